#pragma once

#include "openssl_ptr.h"

#include <optional>
#include <span>
#include <string>

namespace zvcrypt {

// What may follow a certificate in its buffer: cards pad, a certificate on its way has nothing behind it.
enum class Trailing { refused, ignored };

// Null when the bytes are no certificate.
[[nodiscard]] X509Ptr readCertificate(std::span<const unsigned char> der, Trailing trailing);

// ZVC_ERR_BAD_CERTIFICATE when the bytes are no certificate.
[[nodiscard]] X509Ptr requireCertificate(const unsigned char* der, unsigned long length);

[[nodiscard]] Bytes certificateDer(const X509& certificate);

// Whether the one carries the other's subject as issuer and its key made the signature.
[[nodiscard]] bool isIssuedBy(X509& certificate, X509& issuer);

// A string of a certificate in UTF-8; control characters, and bytes that are no text in the string's type, as
// \xNN.
[[nodiscard]] std::string utf8Text(const ASN1_STRING& value);

// "/C=IT/O=..." with OpenSSL's short names; an attribute without one goes by its number.
[[nodiscard]] std::string slashName(const X509_NAME& name);

// The first attribute of that kind; nothing without one.
[[nodiscard]] std::optional<std::string> nameAttribute(const X509_NAME& name, int nid);

} // namespace zvcrypt
