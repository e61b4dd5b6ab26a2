#include "host/help_desk.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace zvhost {
namespace {

bool is_alnum(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0;
}
bool is_digit(char c) {
    return c >= '0' && c <= '9';
}
bool is_one_of(char c, const char* set) {
    return c != '\0' && std::strchr(set, c) != nullptr;
}

bool begins_with_any_case(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(), [](char a, char b) {
               return std::tolower(static_cast<unsigned char>(a)) ==
                      std::tolower(static_cast<unsigned char>(b));
           });
}

// The code's letters and digits; where two persons would have the same one, letters stand for digits.
bool is_code(std::string_view text) {
    constexpr std::string_view form = "LLLLLLDDLDDLDDDL";
    int digits = 0;
    for (std::size_t i = 0; i < form.size(); ++i) {
        const char c = static_cast<char>(std::toupper(static_cast<unsigned char>(text[i])));
        if (form[i] == 'L' ? c < 'A' || c > 'Z' : !is_digit(c) && !is_one_of(c, "LMNPQRSTUV")) return false;
        if (form[i] == 'D' && is_digit(c)) ++digits;
    }
    const bool known_month =
        is_one_of(static_cast<char>(std::toupper(static_cast<unsigned char>(text[8]))), "ABCDEHLMPRST");
    return known_month && digits > 0;
}

constexpr std::size_t CODE_SIZE = 16;

// Length of the code that a text begins with; 0 when it begins with none.
std::size_t code_at(std::string_view text) {
    if (text.size() >= CODE_SIZE && is_code(text.substr(0, CODE_SIZE))) return CODE_SIZE;
    return 0;
}

// What says of the word behind it that it is a tax code.
std::size_t announced_code_at(std::string_view text) {
    for (const std::string_view prefix : {"TINIT-", "VATIT-", "IDCIT-", "PASIT-", "IT:"}) {
        if (!begins_with_any_case(text, prefix)) continue;
        const auto end =
            std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(prefix.size()), text.end(), is_alnum);
        return static_cast<std::size_t>(end - text.begin());
    }
    return 0;
}

bool is_of_address(char c) {
    return is_alnum(c) || is_one_of(c, "._%+-");
}

// Where the word that a PIN would be ends, behind "pin" and what separates it; 0 when nothing looks like one.
std::size_t pin_at(std::string_view text) {
    constexpr std::string_view key = "pin";
    if (!begins_with_any_case(text, key)) return 0;
    const auto value = std::min(text.find_first_not_of(" \t\"'<([:=", key.size()), text.size());
    const auto between = text.substr(key.size(), value - key.size());
    if (between.empty()) return 0;
    const auto end = std::min(text.find_first_of(" \t\r\n\"'<>),;]", value), text.size());
    const auto word = text.substr(value, end - value);
    const bool named =
        between.find_first_of(":=") != std::string_view::npos && between.find('"') == std::string_view::npos;
    const auto digits = std::count_if(word.begin(), word.end(), is_digit);
    return !word.empty() && (named || digits >= 4) && word.front() != '\n' ? end : 0;
}

// Replaces what `length_at` finds, place by place.
template <class LengthAt> std::string without(std::string_view text, const char* by, LengthAt length_at) {
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = length_at(text, at);
        if (length == 0) {
            out += text[at++];
            continue;
        }
        out += by;
        at += length;
    }
    return out;
}

} // namespace

std::string without_pins(std::string_view text) {
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = pin_at(text.substr(at));
        if (length == 0) {
            out += text[at++];
            continue;
        }
        const auto found = text.substr(at, length);
        const auto value = found.find_first_not_of(" \t\"'<([:=", 3);
        out.append(found.substr(0, value)).append("[PIN]");
        at += length;
    }
    return out;
}

std::string without_tax_codes(std::string_view text) {
    return without(text, "[tax code]", [](std::string_view all, std::size_t at) {
        const bool begins = at == 0 || !is_alnum(all[at - 1]);
        if (begins)
            if (const std::size_t length = announced_code_at(all.substr(at))) return length;
        return code_at(all.substr(at));
    });
}

std::string without_addresses(std::string_view text) {
    std::string out;
    for (std::size_t sign = 0; (sign = text.find('@')) != std::string_view::npos;) {
        const auto before = text.substr(0, sign);
        const auto first = std::find_if_not(before.rbegin(), before.rend(), is_of_address).base();
        const auto end =
            std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(sign) + 1, text.end(), is_of_address);
        const auto begin_at = static_cast<std::size_t>(first - before.begin());
        const auto end_at = static_cast<std::size_t>(end - text.begin());
        const bool address =
            begin_at < sign && text.substr(sign, end_at - sign).find('.') != std::string_view::npos;
        out.append(text.substr(0, address ? begin_at : end_at)).append(address ? "[address]" : "");
        text.remove_prefix(end_at);
    }
    return out.append(text);
}

} // namespace zvhost
