#pragma once

#include "crypt/der_reader.h"

#include <string>

namespace zvcrypt {

// "/C=IT/O=..." with OpenSSL's short names; an attribute without one goes by its number.
[[nodiscard]] std::string slash_name(der::Span name);

// The first attribute of that kind; empty without one.
[[nodiscard]] std::string name_attribute(der::Span name, int nid);

} // namespace zvcrypt
