#pragma once

#include "crypt/der_reader.h"

#include <optional>

namespace zvcrypt {

// A certificate taken apart: the parts as they stand in its bytes, which must outlive them. OpenSSL gives
// nothing of a certificate with one wrong byte in a name or a needless one in front of its serial number, and
// authorities issue such.
struct CertificateParts {
    der::Span serial; // content bytes
    der::Span body;   // this and the following with their headers: what is signed
    der::Span serial_number;
    der::Span issuer;
    der::Span not_before;
    der::Span not_after;
    der::Span subject;
    der::Span public_key;
    der::Span extensions; // one after another
    der::Span whole;
};

// ZVC_ERR_BAD_CERTIFICATE when the bytes do not begin with a certificate in DER.
[[nodiscard]] CertificateParts take_apart(der::Span der);

// What the extension of that kind holds; nothing without one. ZVC_ERR_BAD_CERTIFICATE for two of them.
[[nodiscard]] std::optional<der::Span> extension_value(const CertificateParts& certificate, int nid);

} // namespace zvcrypt
