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

bool matchesAtr(std::string_view pattern, std::string_view atr) noexcept {
    return std::equal(pattern.begin(), pattern.end(), atr.begin(), atr.end(),
                      [](char expected, char actual) { return expected == '.' || expected == actual; });
}

} // namespace zvcrypt
