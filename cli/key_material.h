#pragma once

#include "cli/module.h"
#include "ossl/owners.h"

#include <string>
#include <utility>
#include <vector>

namespace cli {

// A certificate as it was issued, and what OpenSSL reads of it: of one that OpenSSL would refuse (see lenient/), a
// copy with other bytes in a name or serial number.
class Certificate {
  public:
    Certificate() = default; // none
    Certificate(Bytes der, X509* read) : der_(std::move(der)), read_(read) {}

    explicit operator bool() const { return read_ != nullptr; }
    [[nodiscard]] const Bytes& der() const { return der_; }
    [[nodiscard]] X509* get() const { return read_.get(); }
    [[nodiscard]] X509& operator*() const { return *read_; }

  private:
    Bytes der_;
    ossl::Certificate read_;
};

// Reads every certificate of a file: PEM (certificates, PKCS#7 bundles), DER of either, or base64 of that DER
// without a frame.
//
// @throws Stop when the file cannot be read or holds none.
[[nodiscard]] std::vector<Certificate> certificates_in_file(const std::string& path);

// Reads one certificate from DER, which may be padded; none when it is no certificate.
[[nodiscard]] Certificate certificate_from(const Bytes& der);

// Takes the public key out of a request: what the request command saves (base64 of a signed message), the
// same in PEM or DER, or a bare PKCS#10 request.
//
// @return the RSA modulus without leading zeros; empty when the text holds no request with an RSA key
[[nodiscard]] Bytes modulus_of_request(const std::string& request);

// Whether a file is what the request command saves. It holds the certificate that signed it.
[[nodiscard]] bool is_request(const std::string& text);

// The RSA modulus of a certificate's key without leading zeros; empty for another kind of key.
[[nodiscard]] Bytes modulus_of(X509& certificate);

// The certificate of whoever signed what the request command saves, DER; empty when it is not in there.
[[nodiscard]] Bytes signer_of_request(const std::string& request);

// Cuts off what pads a stored certificate; empty when it is not even DER.
[[nodiscard]] Bytes without_padding(const Bytes& stored);
// The whole of `bytes` in base64, without line breaks.
[[nodiscard]] std::string base64_of(const Bytes& bytes);

// Says why a card cannot store a certificate; empty when it can.
[[nodiscard]] std::string why_not_storable(const Certificate& certificate);

// Reads a file of at most 1 MiB. @throws Stop
[[nodiscard]] std::string read_file(const std::string& path, const char* what);

} // namespace cli
