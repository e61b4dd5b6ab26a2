#include "atr.h"

#include <algorithm>

namespace zvcrypt {
namespace {

// ISO/IEC 7816-3: the initial character, the format byte and 31 bytes more at most.
constexpr std::size_t shortestAtr = 2;
constexpr std::size_t longestAtr = 33;

constexpr std::string_view separators = " \t:";

std::optional<char> digit(char c, Wildcards wildcards) {
    if (c >= '0' && c <= '9') return c;
    if (c >= 'A' && c <= 'F') return c;
    if (c >= 'a' && c <= 'f') return static_cast<char>(c - 'a' + 'A');
    if (wildcards == Wildcards::allowed && std::string_view(".Xx?").find(c) != std::string_view::npos)
        return '.';
    return std::nullopt;
}

} // namespace

std::optional<std::string> normalisedAtr(std::string_view text, Wildcards wildcards) {
    std::string atr;
    for (const char c : text) {
        if (separators.find(c) != std::string_view::npos) continue;
        const auto one = digit(c, wildcards);
        if (!one) return std::nullopt;
        atr += *one;
    }
    if (atr.size() % 2 != 0 || atr.size() < 2 * shortestAtr || atr.size() > 2 * longestAtr)
        return std::nullopt;
    return atr;
}

PackedAtr::PackedAtr(std::string_view digits) noexcept {
    constexpr std::size_t digitsPerWord = 16;
    constexpr unsigned lengthShift = 32; // the last word has two digits at most
    for (std::size_t i = 0; i < std::min(digits.size(), 2 * longestAtr); ++i) {
        if (digits[i] == '.') continue;
        const auto shift = 4 * (i % digitsPerWord);
        const int value = digits[i] <= '9' ? digits[i] - '0' : digits[i] - 'A' + 10;
        digits_[i / digitsPerWord] |= static_cast<std::uint64_t>(value) << shift;
        mask_[i / digitsPerWord] |= std::uint64_t{0xF} << shift;
    }
    digits_.back() |= static_cast<std::uint64_t>(digits.size()) << lengthShift;
    mask_.back() |= ~std::uint64_t{0} << lengthShift;
}

bool PackedAtr::matches(const PackedAtr& atr) const noexcept {
    if (mask_.back() == 0) return false;
    for (std::size_t i = 0; i < digits_.size(); ++i)
        if (((digits_[i] ^ atr.digits_[i]) & mask_[i]) != 0) return false;
    return true;
}

} // namespace zvcrypt
