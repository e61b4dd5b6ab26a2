#pragma once

#include "cli/module.h"

#include <memory>
#include <openssl/x509.h>
#include <string>
#include <vector>

namespace cli {

struct FreeX509 {
    void operator()(X509* certificate) const { X509_free(certificate); }
};
using Certificate = std::unique_ptr<X509, FreeX509>;

/**
 * Reads every certificate of a file: PEM (certificates, PKCS#7 bundles), DER of either, or base64 of that DER
 * without a frame.
 *
 * @throws Stop when the file cannot be read or holds none.
 */
[[nodiscard]] std::vector<Certificate> certificates_in_file(const std::string& path);

/// Reads one certificate from DER; null when it is none.
[[nodiscard]] Certificate certificate_from(const Bytes& der);

/**
 * Takes the public key out of a request: what the request command saves (base64 of a signed message), the
 * same in PEM or DER, or a bare PKCS#10 request.
 *
 * @return the RSA modulus without leading zeros; empty when the text holds no request with an RSA key
 */
[[nodiscard]] Bytes modulus_of_request(const std::string& request);

/// The RSA modulus of a certificate's key without leading zeros; empty for another kind of key.
[[nodiscard]] Bytes modulus_of(X509& certificate);

/// The certificate of whoever signed what the request command saves, DER; empty when it is not in there.
[[nodiscard]] Bytes signer_of_request(const std::string& request);

[[nodiscard]] Bytes der_of(X509& certificate);

/// One block of a file: what its frame calls it (empty without a frame) and its DER.
struct Block {
    std::string name;
    std::string der;

    [[nodiscard]] bool operator==(const Block&) const = default;
};
[[nodiscard]] std::vector<Block> pem_blocks(const std::string& text);
[[nodiscard]] std::string pem_of(const Block& block);

/// Cuts off what pads a stored certificate; empty when it is not even DER.
[[nodiscard]] Bytes without_padding(const Bytes& stored);
/// The whole of `bytes` in base64, without line breaks.
[[nodiscard]] std::string base64_of(const Bytes& bytes);

/// Says why a card cannot store a certificate; empty when it can.
[[nodiscard]] std::string why_not_storable(X509& certificate);

/// Reads a file of at most 1 MiB. @throws Stop
[[nodiscard]] std::string read_file(const std::string& path, const char* what);

} // namespace cli
