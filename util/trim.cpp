#include "util/trim.h"

#include <cctype>
#include <cstring>

namespace zv {

namespace {

// Writes only what differs: a text that is right already may stand in memory that is not to be written.
template <typename Change> char* change_each(char* text, Change change) {
    for (char* c = text; c != nullptr && *c != '\0'; ++c) {
        const char changed = change(*c);
        if (changed != *c) *c = changed;
    }
    return text;
}

} // namespace

char* upper_case(char* text) {
    return change_each(text,
                       [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
}

char* lower_case(char* text) {
    return change_each(text,
                       [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
}

char* commas_to_points(char* text) {
    return change_each(text, [](char c) { return c == ',' ? '.' : c; });
}

char* strip_right(char* text) {
    if (text == nullptr) return nullptr;
    std::size_t length = std::strlen(text);
    while (length > 0 && text[length - 1] == ' ')
        --length;
    if (text[length] != '\0') text[length] = '\0';
    return text;
}

char* strip_left(char* text) {
    if (text == nullptr) return nullptr;
    const std::size_t blanks = std::strspn(text, " ");
    if (blanks > 0) std::memmove(text, text + blanks, std::strlen(text + blanks) + 1);
    return text;
}

char* strip(char* text) {
    return strip_left(strip_right(text));
}

} // namespace zv
