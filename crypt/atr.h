#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zvcrypt {

// An answer to reset, or a pattern of one, as upper-case hexadecimal; a '.' in a pattern stands for any
// digit.
enum class Wildcards { refused, allowed };

// Brings the written form of an ATR to that form. Nothing when it is none: no hexadecimal, or not 2 to 33
// bytes.
[[nodiscard]] std::optional<std::string> normalisedAtr(std::string_view text, Wildcards wildcards);

[[nodiscard]] bool matchesAtr(std::string_view pattern, std::string_view atr) noexcept;

} // namespace zvcrypt
