#pragma once

#include "openssl_ptr.h"

#include <span>

namespace zvcrypt {

// Null when the bytes are no certificate in DER, or one that OpenSSL does not take. What follows is ignored,
// as cards pad.
[[nodiscard]] X509Ptr readCertificate(std::span<const unsigned char> der);

// The same for a caller that wants the reason: ZVC_ERR_BAD_CERTIFICATE.
[[nodiscard]] X509Ptr requireCertificate(const unsigned char* der, unsigned long length);

[[nodiscard]] Bytes certificateDer(const X509& certificate);

// Whether the one carries the other's subject as issuer and its key made the signature.
[[nodiscard]] bool isIssuedBy(X509& certificate, X509& issuer);

} // namespace zvcrypt
