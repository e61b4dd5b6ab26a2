#pragma once

#include "crypt/der_reader.h"

#include <string>

// Object identifiers as they stand in a certificate, for people. Bytes that are none are
// ZVC_ERR_BAD_CERTIFICATE.
namespace zvcrypt {

// Its numbers joined by dots.
[[nodiscard]] std::string dotted_number(der::Span identifier);

// OpenSSL's short name, or the number of what has none.
[[nodiscard]] std::string short_name(der::Span identifier);

} // namespace zvcrypt
