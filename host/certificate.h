#pragma once

#include "host/module.h"
#include "host/sentence.h"
#include "ossl/owners.h"

#include <string>
#include <utility>
#include <vector>

namespace zvhost {

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

// Reads one certificate from DER, which may be padded; none when it is no certificate.
[[nodiscard]] Certificate certificate_from(const Bytes& der);

// The RSA modulus of a certificate's key without leading zeros; empty for another kind of key.
[[nodiscard]] Bytes modulus_of(X509& certificate);

// The RSA modulus of a key without leading zeros; empty for another kind of key or none.
[[nodiscard]] Bytes modulus_of(EVP_PKEY* key);

// Cuts off what pads a stored certificate; empty when it is not even DER.
[[nodiscard]] Bytes without_padding(const Bytes& stored);

// The whole of `bytes` in base64, without line breaks.
[[nodiscard]] std::string base64_of(const Bytes& bytes);

// Says why a card cannot store a certificate; empty when it can.
[[nodiscard]] Sentence why_not_storable(const Certificate& certificate);

} // namespace zvhost
