#include "crypt/atr.h"

#include <algorithm>

namespace zvcrypt {
namespace {

// ISO/IEC 7816-3: the initial character, the format byte and 31 bytes more at most.
constexpr std::size_t SHORTEST_ATR = 2;
constexpr std::size_t LONGEST_ATR = 33;

constexpr std::string_view SEPARATORS = " \t:";

std::optional<char> digit(char c, Wildcards wildcards) {
    if (c >= '0' && c <= '9') return c;
    if (c >= 'A' && c <= 'F') return c;
    if (c >= 'a' && c <= 'f') return static_cast<char>(c - 'a' + 'A');
    if (wildcards == Wildcards::allowed && std::string_view(".Xx?").find(c) != std::string_view::npos)
        return '.';
    return std::nullopt;
}

} // namespace

std::optional<std::string> normalised_atr(std::string_view text, Wildcards wildcards) {
    std::string atr;
    for (const char c : text) {
        if (SEPARATORS.find(c) != std::string_view::npos) continue;
        const auto one = digit(c, wildcards);
        if (!one) return std::nullopt;
        atr += *one;
    }
    if (atr.size() % 2 != 0 || atr.size() < 2 * SHORTEST_ATR || atr.size() > 2 * LONGEST_ATR)
        return std::nullopt;
    return atr;
}

PackedAtr::PackedAtr(std::string_view digits) noexcept {
    constexpr std::size_t digits_per_word = 16;
    constexpr unsigned length_shift = 32; // the last word has two digits at most
    for (std::size_t i = 0; i < std::min(digits.size(), 2 * LONGEST_ATR); ++i) {
        if (digits[i] == '.') continue;
        const auto shift = 4 * (i % digits_per_word);
        const int value = digits[i] <= '9' ? digits[i] - '0' : digits[i] - 'A' + 10;
        digits_[i / digits_per_word] |= static_cast<std::uint64_t>(value) << shift;
        mask_[i / digits_per_word] |= std::uint64_t{0xF} << shift;
    }
    digits_.back() |= static_cast<std::uint64_t>(digits.size()) << length_shift;
    mask_.back() |= ~std::uint64_t{0} << length_shift;
}

bool PackedAtr::matches(const PackedAtr& atr) const noexcept {
    if (mask_.back() == 0) return false;
    for (std::size_t i = 0; i < digits_.size(); ++i)
        if (((digits_[i] ^ atr.digits_[i]) & mask_[i]) != 0) return false;
    return true;
}

} // namespace zvcrypt
