#include "util/text.h"

#include <algorithm>
#include <cstring>

#include "routines.h"

namespace zv {

bool copyText(char* destination, std::size_t size, std::string_view text) {
    if (destination == nullptr || size == 0) return text.empty();
    const std::size_t length = std::min(text.size(), size - 1);
    if (length > 0) std::memmove(destination, text.data(), length);
    destination[length] = '\0';
    return length == text.size();
}

bool appendText(char* destination, std::size_t size, std::string_view text) {
    if (destination == nullptr || size == 0) return text.empty();
    const std::size_t used = boundedText(destination, size).size();
    return copyText(destination + used, size - used, text);
}

std::string_view boundedText(const char* buffer, std::size_t size) {
    if (buffer == nullptr) return {};
    return {buffer, strnlen(buffer, size)};
}

std::string_view cutAtCharacter(std::string_view text, std::size_t most) {
    constexpr std::size_t longestTail = 3;
    if (text.size() <= most) return text;
    const auto continues = [text](std::size_t place) {
        return (static_cast<unsigned char>(text[place]) & 0xC0) == 0x80;
    };
    std::size_t end = most;
    while (end > 0 && most - end < longestTail && continues(end))
        --end;
    return text.substr(0, end);
}

bool replaceFirst(char* text, std::size_t size, const char* pattern, const char* replacement, char* scratch) {
    char* place = strstrICase(text, pattern);
    if (place == nullptr) return false;
    copyText(scratch, size, place + std::strlen(pattern));
    *place = '\0';
    appendText(text, size, replacement);
    appendText(text, size, scratch);
    return true;
}

} // namespace zv
