// Fields in texts of name and value pairs, and their escapes.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include "routines.h"
#include "util/text.h"

namespace {

constexpr int NO_FIELD = -1;
constexpr int NO_SEPARATOR = -4;

std::string_view trimBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool startsField(std::string_view text, std::size_t place, std::string_view pairSeparator) {
    if (place == 0) return true;
    if (text.substr(0, place).ends_with(pairSeparator)) return true;
    return std::string_view("\n ,:;=").find(text[place - 1]) != std::string_view::npos;
}

unsigned hexValue(char c) {
    const int lower = std::tolower(static_cast<unsigned char>(c));
    return static_cast<unsigned>(zv::isDigit(static_cast<char>(lower)) ? lower : lower + 9) & 0x0F;
}

} // namespace

char* UnEscape(char* text) {
    if (text == nullptr) return nullptr;
    char* decoded = static_cast<char*>(std::calloc(2 * std::strlen(text) + 10, 1));
    if (decoded == nullptr) return nullptr;
    char* out = decoded;
    while (*text != '\0') {
        if (text[0] == '%' && text[1] != '\0' && text[2] != '\0') {
            *out++ = static_cast<char>(hexValue(text[1]) << 4 | hexValue(text[2]));
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

int NWGetOpt(char* text, char* name, char* output, char* pairSeparator, char* valueSeparator) {
    if (text == nullptr || name == nullptr || output == nullptr) return NO_FIELD;
    output[0] = '\0';
    const std::string_view all = text, wanted = name, pair = zv::orEmpty(pairSeparator);
    const std::string_view between = zv::orEmpty(valueSeparator);
    std::size_t place = all.find(wanted);
    while (place != std::string_view::npos) {
        if (!startsField(all, place, pair)) {
            place = all.find(wanted, place + std::max<std::size_t>(wanted.size(), 1));
            continue;
        }
        const std::size_t separator = between.empty() ? std::string_view::npos : all.find(between, place);
        if (separator == std::string_view::npos) return NO_SEPARATOR;
        if (trimBlanks(all.substr(place, separator - place)) == wanted) {
            const std::string_view rest = all.substr(separator + between.size());
            const std::string_view value = trimBlanks(rest.substr(0, rest.find(pair)));
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
