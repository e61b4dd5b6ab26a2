// Joining, searching and measuring texts.
#include <new>
#include <string>

#include "routines.h"
#include "util/text.h"

char CatSZtoSZbuff[256];

namespace {

std::string upperCased(const char* text) {
    std::string copy(text);
    _strupr(copy.data());
    return copy;
}

} // namespace

char* CatSZtoSZ(const char* first, const char* second) {
    zv::copyText(CatSZtoSZbuff, zv::orEmpty(first));
    zv::appendText(CatSZtoSZbuff, zv::orEmpty(second));
    return CatSZtoSZbuff;
}

char* strstrICase(const char* haystack, const char* needle) try {
    if (haystack == nullptr || needle == nullptr) return nullptr;
    const std::size_t place = upperCased(haystack).find(upperCased(needle));
    return place == std::string::npos ? nullptr : const_cast<char*>(haystack) + place;
} catch (const std::bad_alloc&) {
    return nullptr;
}

int HexLen(char* buffer, int length) {
    if (buffer == nullptr) return 0;
    while (length > 0 && buffer[length - 1] == '\0')
        --length;
    return length;
}
