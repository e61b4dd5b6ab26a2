#pragma once

#include "crypt/bytes.h"
#include "crypt/certificate_parts.h"
#include "ossl/owners.h"

#include <span>

namespace zvcrypt {

// A certificate as it was issued, and what OpenSSL makes of it. Names and serial number are taken from the bytes: of
// those that OpenSSL refuses it has others.
struct Certificate {
    Bytes der;
    ossl::Certificate x509; // null for none; without its key

    [[nodiscard]] explicit operator bool() const noexcept { return x509 != nullptr; }
    [[nodiscard]] CertificateParts parts() const { return take_apart(der); }

    // Null where it cannot be read.
    [[nodiscard]] EVP_PKEY* key() const;
    mutable ossl::Key decoded = nullptr; // once it was asked for
};

// None when the bytes are no certificate in DER. What follows is ignored, as cards pad.
[[nodiscard]] Certificate read_certificate(std::span<const unsigned char> der);

// The same for a caller that wants the reason: ZVC_ERR_BAD_CERTIFICATE.
[[nodiscard]] Certificate require_certificate(std::span<const unsigned char> der);

// Whether the one carries the other's subject as issuer and its key made the signature.
[[nodiscard]] bool is_issued_by(const Certificate& certificate, const Certificate& issuer);

} // namespace zvcrypt
