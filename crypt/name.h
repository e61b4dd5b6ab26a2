#pragma once

#include "der_reader.h"

#include <string>

namespace zvcrypt {

// "/C=IT/O=..." with OpenSSL's short names; an attribute without one goes by its number.
[[nodiscard]] std::string slashName(der::Span name);

// The first attribute of that kind; empty without one.
[[nodiscard]] std::string nameAttribute(der::Span name, int nid);

} // namespace zvcrypt
