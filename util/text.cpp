#include "util/text.h"

#include "routines/util.h"

#include <algorithm>
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

bool replace_first(char* text, std::size_t size, const char* pattern, const char* replacement,
                   char* scratch) {
    char* place = strstrICase(text, pattern);
    if (place == nullptr) return false;
    copy_text(scratch, size, place + std::strlen(pattern));
    *place = '\0';
    append_text(text, size, replacement);
    append_text(text, size, scratch);
    return true;
}

} // namespace zv
