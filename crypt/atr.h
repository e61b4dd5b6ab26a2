#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zvcrypt {

// An answer to reset, or a pattern of one, as upper-case hexadecimal; a '.' in a pattern stands for any
// digit.
enum class Wildcards { refused, allowed };

// Brings the written form of an ATR to that form. Nothing when it is none: no hexadecimal, or not 2 to 33
// bytes.
[[nodiscard]] std::optional<std::string> normalised_atr(std::string_view text, Wildcards wildcards);

// The same in a form that is quick to compare: sixteen digits a word, then their number.
class PackedAtr {
  public:
    PackedAtr() noexcept = default; // matches no ATR
    explicit PackedAtr(std::string_view digits) noexcept;

    // Whether the pattern has the ATR's length and, but for its wildcards, its digits. One without digits is none.
    [[nodiscard]] bool matches(const PackedAtr& atr) const noexcept;

  private:
    using Words = std::array<std::uint64_t, 5>;
    Words digits_{};
    Words mask_{};
};

} // namespace zvcrypt
