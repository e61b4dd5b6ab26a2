#pragma once

#include "certificate_parts.h"
#include "openssl_ptr.h"

#include <span>

namespace zvcrypt {

// A certificate as it was issued, and what OpenSSL makes of it. Names and serial number are taken from the bytes: of
// those that OpenSSL refuses it has others.
struct Certificate {
    Bytes der;
    X509Ptr x509; // null for none

    [[nodiscard]] explicit operator bool() const noexcept { return x509 != nullptr; }
    [[nodiscard]] CertificateParts parts() const { return takeApart(der); }
    [[nodiscard]] EVP_PKEY* key() const noexcept { return X509_get0_pubkey(x509.get()); }
};

// None when the bytes are no certificate in DER. What follows is ignored, as cards pad.
[[nodiscard]] Certificate readCertificate(std::span<const unsigned char> der);

// The same for a caller that wants the reason: ZVC_ERR_BAD_CERTIFICATE.
[[nodiscard]] Certificate requireCertificate(std::span<const unsigned char> der);

// Whether the one carries the other's subject as issuer and its key made the signature.
[[nodiscard]] bool isIssuedBy(const Certificate& certificate, const Certificate& issuer);

} // namespace zvcrypt
