#include "util/fields.h"

#include "util/text.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace zv {

namespace {

std::string_view trim_blanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool starts_field(std::string_view text, std::size_t place, std::string_view pair_separator) {
    if (place == 0) return true;
    if (text.substr(0, place).ends_with(pair_separator)) return true;
    return std::string_view("\n ,:;=").find(text[place - 1]) != std::string_view::npos;
}

unsigned hex_value(char c) {
    const int lower = std::tolower(static_cast<unsigned char>(c));
    return static_cast<unsigned>(is_digit(static_cast<char>(lower)) ? lower : lower + 9) & 0x0F;
}

} // namespace

Field find_field(std::string_view text, std::string_view name, const FieldForm& form) {
    std::size_t place = text.find(name);
    while (place != std::string_view::npos) {
        if (!starts_field(text, place, form.pair_separator)) {
            place = text.find(name, place + std::max<std::size_t>(name.size(), 1));
            continue;
        }
        const std::size_t separator =
            form.value_separator.empty() ? std::string_view::npos : text.find(form.value_separator, place);
        if (separator == std::string_view::npos) return {Field::Result::no_separator, {}};
        if (trim_blanks(text.substr(place, separator - place)) == name) {
            const std::string_view rest = text.substr(separator + form.value_separator.size());
            return {Field::Result::found, trim_blanks(rest.substr(0, rest.find(form.pair_separator)))};
        }
        place = text.find(name, std::max(separator, place + 1));
    }
    return {};
}

void decode_escapes(const char* text, char* decoded) {
    while (*text != '\0') {
        if (text[0] == '%' && text[1] != '\0' && text[2] != '\0') {
            *decoded++ = static_cast<char>(hex_value(text[1]) << 4 | hex_value(text[2]));
            text += 3;
        } else {
            *decoded++ = *text++;
        }
    }
    *decoded = '\0';
}

void decode_value(char* text) {
    std::replace(text, text + std::strlen(text), '+', ' ');
    decode_escapes(text, text);
}

} // namespace zv
