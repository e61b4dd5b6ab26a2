#pragma once

#include "records.h"

#include <string_view>

namespace zv {

// The name that a host's text would give if the text that it is worked on in had no end.
[[nodiscard]] datiDN whole_name(std::string_view dn);

} // namespace zv
