#include "host/mask_words.h"

#include "host/certificate.h"

#include <algorithm>

namespace zvhost {
namespace {

constexpr std::size_t SHORTEST_ENCODED = 4;

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool same_letter(char a, char b) {
    return lower(a) == lower(b);
}

bool is_letter_of_word(char c) {
    const char small = lower(c);
    return (small >= 'a' && small <= 'z') || static_cast<unsigned char>(c) >= 0x80;
}

bool stands_alone(std::string_view text, std::size_t at, std::size_t size) {
    const bool begins = at == 0 || !is_letter_of_word(text[at - 1]) || !is_letter_of_word(text[at]);
    const std::size_t end = at + size;
    return begins &&
           (end == text.size() || !is_letter_of_word(text[end]) || !is_letter_of_word(text[end - 1]));
}

std::string hex_of(const std::string& text, const char* digits, const char* between) {
    std::string hex;
    for (const char c : text) {
        if (!hex.empty()) hex += between;
        const auto byte = static_cast<unsigned char>(c);
        hex.append({digits[byte >> 4U], digits[byte & 0xFU]});
    }
    return hex;
}

// What base64 makes of a text wherever it stands among other bytes: the characters that it alone decides.
std::string base64_within(const std::string& text, std::size_t bytes_before) {
    Bytes bytes(bytes_before, 0);
    bytes.insert(bytes.end(), text.begin(), text.end());
    const std::size_t first = (bytes_before * 8 + 5) / 6, last = bytes.size() * 8 / 6;
    return base64_of(bytes).substr(first, last - first);
}

// A UTF-8 text in Latin-1; as it is where it has other characters.
std::string latin(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte == 0xC2 || byte == 0xC3) && i + 1 < text.size())
            out += static_cast<char>((byte & 0x03U) << 6U | (static_cast<unsigned char>(text[++i]) & 0x3FU));
        else
            out += text[i];
    }
    return out;
}

std::string in_json(const std::string& text) {
    std::string out;
    for (const char c : text)
        out.append(c == '"' || c == '\\' ? "\\" : "").append(1, c);
    return out;
}

} // namespace

std::string replaced(std::string_view text, std::string_view what, std::string_view by, Where where) {
    std::string out;
    for (;;) {
        const auto found = std::search(text.begin(), text.end(), what.begin(), what.end(), same_letter);
        if (what.empty() || found == text.end()) return out.append(text);
        const auto at = static_cast<std::size_t>(found - text.begin());
        const bool taken = where == Where::anywhere || stands_alone(text, at, what.size());
        out.append(text.substr(0, at)).append(taken ? by : text.substr(at, what.size()));
        text.remove_prefix(at + what.size());
    }
}

std::vector<std::string> forms_of(const std::string& name) {
    std::vector<std::string> forms = {name, in_json(name), latin(name)};
    if (name.size() >= SHORTEST_ENCODED) {
        for (const char* between : {"", " ", ":"})
            forms.push_back(hex_of(name, "0123456789ABCDEF", between));
        for (std::size_t before = 0; before < 3; ++before)
            forms.push_back(base64_within(name, before));
    }
    std::sort(forms.begin(), forms.end());
    forms.erase(std::unique(forms.begin(), forms.end()), forms.end());
    return forms;
}

} // namespace zvhost
