// Fields in texts of name and value pairs, and their escapes.
#include "routines/util.h"
#include "util/text.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

namespace {

constexpr int NO_FIELD = -1;
constexpr int NO_SEPARATOR = -4;

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
    return static_cast<unsigned>(zv::is_digit(static_cast<char>(lower)) ? lower : lower + 9) & 0x0F;
}

} // namespace

char* UnEscape(char* text) {
    if (text == nullptr) return nullptr;
    char* decoded = static_cast<char*>(std::calloc(2 * std::strlen(text) + 10, 1));
    if (decoded == nullptr) return nullptr;
    char* out = decoded;
    while (*text != '\0') {
        if (text[0] == '%' && text[1] != '\0' && text[2] != '\0') {
            *out++ = static_cast<char>(hex_value(text[1]) << 4 | hex_value(text[2]));
            text += 3;
        } else {
            *out++ = *text++;
        }
    }
    return decoded;
}

char* Converte(char* text) {
    if (text == nullptr) return nullptr;
    std::replace(text, text + std::strlen(text), '+', ' ');
    const std::unique_ptr<char, decltype(&std::free)> decoded(UnEscape(text), &std::free);
    if (decoded != nullptr) std::memcpy(text, decoded.get(), std::strlen(decoded.get()) + 1);
    return text;
}

int NWGetOpt(char* text, char* name, char* output, char* pair_separator, char* value_separator) {
    if (text == nullptr || name == nullptr || output == nullptr) return NO_FIELD;
    output[0] = '\0';
    const std::string_view all = text, wanted = name, pair = zv::or_empty(pair_separator);
    const std::string_view between = zv::or_empty(value_separator);
    std::size_t place = all.find(wanted);
    while (place != std::string_view::npos) {
        if (!starts_field(all, place, pair)) {
            place = all.find(wanted, place + std::max<std::size_t>(wanted.size(), 1));
            continue;
        }
        const std::size_t separator = between.empty() ? std::string_view::npos : all.find(between, place);
        if (separator == std::string_view::npos) return NO_SEPARATOR;
        if (trim_blanks(all.substr(place, separator - place)) == wanted) {
            const std::string_view rest = all.substr(separator + between.size());
            const std::string_view value = trim_blanks(rest.substr(0, rest.find(pair)));
            *std::copy(value.begin(), value.end(), output) = '\0';
            return 0;
        }
        place = all.find(wanted, std::max(separator, place + 1));
    }
    return NO_FIELD;
}

int Valore(char* text, char* name, char* output) {
    char pair[] = "&", between[] = "=";
    if (output != nullptr) output[0] = '\0';
    NWGetOpt(text, name, output, pair, between);
    AllTrim(Converte(output));
    return 0;
}
