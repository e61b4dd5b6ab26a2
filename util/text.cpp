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
    const auto place = std::search(haystack.begin(), haystack.end(), needle.begin(), needle.end(), same);
    const bool found = place != haystack.end() || needle.empty();
    return found ? static_cast<std::size_t>(place - haystack.begin()) : std::string_view::npos;
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
