#pragma once

#include <string>
#include <string_view>

namespace zvcrypt {

// The tax code in a subject, from its serial number or its common name; empty when neither holds one.
[[nodiscard]] std::string tax_code(std::string_view serial_number, std::string_view common_name);

} // namespace zvcrypt
