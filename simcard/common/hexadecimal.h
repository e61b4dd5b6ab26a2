#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace simcard {

// Bytes as upper-case hexadecimal digits.
[[nodiscard]] std::string hexadecimal(std::string_view bytes);

// The bytes that hexadecimal digits of either case stand for; none when they are not such digits, in pairs.
[[nodiscard]] std::optional<std::string> from_hexadecimal(std::string_view digits);

} // namespace simcard
