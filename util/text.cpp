#include "util/text.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace zv {

bool copy_text(char* destination, std::size_t size, std::string_view text) {
    if (destination == nullptr || size == 0) return text.empty();
    const std::size_t length = std::min(text.size(), size - 1);
    if (length > 0) std::memmove(destination, text.data(), length);
    destination[length] = '\0';
    return length == text.size();
}

bool append_text(char* destination, std::size_t size, std::string_view text) {
    if (destination == nullptr || size == 0) return text.empty();
    const std::size_t used = bounded_text(destination, size).size();
    return copy_text(destination + used, size - used, text);
}

std::string_view bounded_text(const char* buffer, std::size_t size) {
    if (buffer == nullptr) return {};
    return {buffer, strnlen(buffer, size)};
}

std::string_view cut_at_character(std::string_view text, std::size_t most) {
    constexpr std::size_t longest_tail = 3;
    if (text.size() <= most) return text;
    const auto continues = [text](std::size_t place) {
        return (static_cast<unsigned char>(text[place]) & 0xC0) == 0x80;
    };
    std::size_t end = most;
    while (end > 0 && most - end < longest_tail && continues(end))
        --end;
    return text.substr(0, end);
}

FixedText<256> join(const char* first, const char* second) {
    FixedText<256> both;
    copy_text(both.text, or_empty(first));
    append_text(both.text, or_empty(second));
    return both;
}

std::size_t find_ignoring_case(std::string_view haystack, std::string_view needle) {
    const auto same = [](unsigned char left, unsigned char right) {
        return std::toupper(left) == std::toupper(right);
    };
    if (needle.empty()) return 0;
    // Most bytes are told from the first one by the processor's own search.
    const auto upper = static_cast<char>(std::toupper(static_cast<unsigned char>(needle.front())));
    const auto lower = static_cast<char>(std::tolower(static_cast<unsigned char>(upper)));
    const auto next = [&](std::size_t from) {
        const std::size_t place = haystack.find(upper, from);
        return upper == lower ? place : std::min(place, haystack.substr(0, place).find(lower, from));
    };
    for (std::size_t place = next(0);
         place != std::string_view::npos && needle.size() <= haystack.size() - place; place = next(place + 1))
        if (std::equal(needle.begin(), needle.end(), haystack.begin() + static_cast<std::ptrdiff_t>(place),
                       same))
            return place;
    return std::string_view::npos;
}

std::size_t length_without_zeros(std::string_view bytes) {
    const std::size_t last = bytes.find_last_not_of('\0');
    return last == std::string_view::npos ? 0 : last + 1;
}

bool replace_first(char* text, std::size_t size, const char* pattern, const char* replacement,
                   char* scratch) {
    const std::size_t found = find_ignoring_case(or_empty(text), pattern);
    if (found == std::string_view::npos) return false;
    char* place = text + found;
    copy_text(scratch, size, place + std::strlen(pattern));
    *place = '\0';
    append_text(text, size, replacement);
    append_text(text, size, scratch);
    return true;
}

} // namespace zv
