// Joining, searching and measuring texts.
#include <string>

#include "routines.h"
#include "util/guarded.h"
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

char* strstrICase(const char* haystack, const char* needle) {
    if (haystack == nullptr || needle == nullptr) return nullptr;
    const std::size_t place =
        zv::guarded(std::string::npos, [=] { return upperCased(haystack).find(upperCased(needle)); });
    return place == std::string::npos ? nullptr : const_cast<char*>(haystack) + place;
}

int HexLen(char* buffer, int length) {
    if (buffer == nullptr) return 0;
    while (length > 0 && buffer[length - 1] == '\0')
        --length;
    return length;
}
