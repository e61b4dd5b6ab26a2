// Letter case, blanks and separators, changed in place.

#include "routines/util.h"

#include <cctype>
#include <cstring>

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

char* _strupr(char* text) {
    return change_each(text,
                       [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
}

char* _strlwr(char* text) {
    return change_each(text,
                       [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
}

char* VirgolaToPunto(char* text) {
    return change_each(text, [](char c) { return c == ',' ? '.' : c; });
}

char* RTrim(char* text) {
    if (text == nullptr) return nullptr;
    std::size_t length = std::strlen(text);
    while (length > 0 && text[length - 1] == ' ')
        --length;
    if (text[length] != '\0') text[length] = '\0';
    return text;
}

char* LTrim(char* text) {
    if (text == nullptr) return nullptr;
    const std::size_t blanks = std::strspn(text, " ");
    if (blanks > 0) std::memmove(text, text + blanks, std::strlen(text + blanks) + 1);
    return text;
}

char* AllTrim(char* text) {
    return LTrim(RTrim(text));
}
