#include "host/help_desk.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

namespace zvhost {
namespace {

constexpr std::size_t SHORTEST_HEX = 16;       // eight bytes
constexpr std::size_t SHORTEST_SPACED = 8;     // bytes
constexpr std::size_t SHORTEST_BASE64 = 40;    // within a line
constexpr std::size_t SHORTEST_WHOLE_LINE = 8; // a line of nothing else, behind such a line

bool is_hex_digit(char c) {
    return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

bool is_of_base64(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '+' || c == '/' || c == '=';
}

template <class Belongs> std::size_t length_of_run(std::string_view text, Belongs belongs) {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), belongs) - text.begin());
}

// "41 64 61", "41:64:61": the characters that such a run has.
std::size_t length_of_spaced(std::string_view text) {
    std::size_t length = 0, bytes = 0;
    for (std::size_t at = 0; at + 1 < text.size() && is_hex_digit(text[at]) && is_hex_digit(text[at + 1]);) {
        length = at + 2;
        ++bytes;
        if (length == text.size() || (text[length] != ' ' && text[length] != ':' && text[length] != '-'))
            break;
        at = length + 1;
    }
    return bytes >= SHORTEST_SPACED ? length : 0;
}

// Paths and words have not all three.
bool looks_like_base64(std::string_view run) {
    const auto any = [&](int (*is)(int)) {
        return std::any_of(run.begin(), run.end(), [&](unsigned char c) { return is(c) != 0; });
    };
    return any(std::isdigit) && any(std::islower) && any(std::isupper);
}

bool begins_word(std::string_view text, std::size_t at) {
    return at == 0 || !is_of_base64(text[at - 1]);
}

// What is encoded at a place of a line, and as what.
std::size_t encoded_at(std::string_view line, std::size_t at, const char*& form) {
    if (!begins_word(line, at)) return 0;
    const auto rest = line.substr(at);
    form = "hexadecimal";
    if (const auto length = length_of_run(rest, is_hex_digit); length >= SHORTEST_HEX) return length;
    if (const auto length = length_of_spaced(rest); length > 0) return length;
    form = "base64";
    const auto length = length_of_run(rest, is_of_base64);
    return length >= SHORTEST_BASE64 && looks_like_base64(rest.substr(0, length)) ? length : 0;
}

// A line without what is encoded in it. @param[in,out] within  whether the line before was base64 as a whole
std::string clear_line(std::string_view line, bool& within) {
    const bool whole = length_of_run(line, is_of_base64) == line.size() && !line.empty();
    if (within && whole && line.size() >= SHORTEST_WHOLE_LINE)
        return fmt::format("[base64, {} characters]", line.size());
    std::string out;
    bool ends_encoded = false;
    for (std::size_t at = 0; at < line.size();) {
        const char* form = nullptr;
        const std::size_t length = encoded_at(line, at, form);
        ends_encoded = length > 0;
        if (length == 0) {
            out += line[at++];
            continue;
        }
        out += fmt::format("[{}, {} characters]", form, length);
        at += length;
    }
    within = ends_encoded;
    return out;
}

} // namespace

std::string without_encoded(std::string_view text) {
    std::string out;
    bool within = false;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        out += clear_line(text.substr(0, end), within);
        if (end < text.size()) out += '\n';
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return out;
}

} // namespace zvhost
