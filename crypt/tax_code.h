#pragma once

#include <string>
#include <string_view>

namespace zvcrypt {

// The codice fiscale in a subject, from its serial number or its common name; empty when neither holds one.
[[nodiscard]] std::string taxCode(std::string_view serialNumber, std::string_view commonName);

} // namespace zvcrypt
