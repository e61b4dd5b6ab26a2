#include "crypt/tax_code.h"

#include <algorithm>

namespace zvcrypt {
namespace {

bool is_letter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// Sixteen characters: letters at fixed places, digits elsewhere. Where two codes would be equal, letters take
// the place of some digits.
bool is_tax_code(std::string_view text) {
    constexpr std::string_view form = "LLLLLLDDLDDLDDDL";
    return std::equal(text.begin(), text.end(), form.begin(), form.end(), [](char c, char kind) {
        return is_letter(c) || (kind == 'D' && c >= '0' && c <= '9');
    });
}

// What a person has before the final code: eleven digits.
bool is_provisional_code(std::string_view text) {
    return text.size() == 11 &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool starts_with_any_case(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(), [](char a, char b) {
               return a == (b >= 'a' && b <= 'z' ? static_cast<char>(b - 'a' + 'A') : b);
           });
}

} // namespace

std::string tax_code(std::string_view serial_number, std::string_view common_name) {
    // Said to be one: whatever follows.
    for (const std::string_view prefix : {"IT:", "TINIT-"})
        if (serial_number.size() > prefix.size() && starts_with_any_case(serial_number, prefix))
            return std::string(serial_number.substr(prefix.size()));
    const auto separator = serial_number.find_first_of("-:");
    const auto bare =
        separator == std::string_view::npos ? serial_number : serial_number.substr(separator + 1);
    if (is_tax_code(bare)) return std::string(bare);
    const auto slash = common_name.find('/');
    const auto front = common_name.substr(0, slash);
    const bool found = is_tax_code(front) || (slash != std::string_view::npos && is_provisional_code(front));
    return found ? std::string(front) : std::string();
}

} // namespace zvcrypt
