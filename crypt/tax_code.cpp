#include "tax_code.h"

#include <algorithm>

namespace zvcrypt {
namespace {

bool isLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// Sixteen characters: letters at fixed places, digits elsewhere. Where two codes would be equal, letters take
// the place of some digits.
bool isTaxCode(std::string_view text) {
    constexpr std::string_view form = "LLLLLLDDLDDLDDDL";
    return std::equal(text.begin(), text.end(), form.begin(), form.end(),
                      [](char c, char kind) { return isLetter(c) || (kind == 'D' && c >= '0' && c <= '9'); });
}

// What a person has before the final code: eleven digits.
bool isProvisionalCode(std::string_view text) {
    return text.size() == 11 &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool startsWithAnyCase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(), [](char a, char b) {
               return a == (b >= 'a' && b <= 'z' ? static_cast<char>(b - 'a' + 'A') : b);
           });
}

} // namespace

std::string taxCode(std::string_view serialNumber, std::string_view commonName) {
    // Said to be one: whatever follows.
    for (const std::string_view prefix : {"IT:", "TINIT-"})
        if (serialNumber.size() > prefix.size() && startsWithAnyCase(serialNumber, prefix))
            return std::string(serialNumber.substr(prefix.size()));
    const auto separator = serialNumber.find_first_of("-:");
    const auto bare = separator == std::string_view::npos ? serialNumber : serialNumber.substr(separator + 1);
    if (isTaxCode(bare)) return std::string(bare);
    const auto slash = commonName.find('/');
    const auto front = commonName.substr(0, slash);
    const bool found = isTaxCode(front) || (slash != std::string_view::npos && isProvisionalCode(front));
    return found ? std::string(front) : std::string();
}

} // namespace zvcrypt
