// Joining, searching and measuring texts.
#include "routines/util.h"
#include "util/guarded.h"
#include "util/text.h"

#include <string>

char CatSZtoSZbuff[256];

namespace {

std::string upper_cased(const char* text) {
    std::string copy(text);
    _strupr(copy.data());
    return copy;
}

} // namespace

char* CatSZtoSZ(const char* first, const char* second) {
    zv::copy_text(CatSZtoSZbuff, zv::or_empty(first));
    zv::append_text(CatSZtoSZbuff, zv::or_empty(second));
    return CatSZtoSZbuff;
}

char* strstrICase(const char* haystack, const char* needle) {
    if (haystack == nullptr || needle == nullptr) return nullptr;
    const std::size_t place =
        zv::guarded(std::string::npos, [=] { return upper_cased(haystack).find(upper_cased(needle)); });
    return place == std::string::npos ? nullptr : const_cast<char*>(haystack) + place;
}

int HexLen(char* buffer, int length) {
    if (buffer == nullptr) return 0;
    while (length > 0 && buffer[length - 1] == '\0')
        --length;
    return length;
}
