// Numbers as texts. The "Hex" helpers write "0x" and decimal digits: the log's readers expect that form.
#include "routines/util.h"
#include "util/text.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

char ILtoAbuff[32];
char ILtoAbuffHex[32];
char CatILtoAbuff[128];
char CatILtoAbuffHex1[128];
char CatILtoAbuffHex2[128];
char x1[32];
char x2[32];
char x3[32];

namespace {

// The prefix may be an earlier result in the same buffer: copy_text moves it.
char* join_prefix(char (&buffer)[128], const char* prefix, std::string_view tail) {
    zv::copy_text(buffer, sizeof buffer - tail.size(), zv::or_empty(prefix));
    zv::append_text(buffer, tail);
    return buffer;
}

char* join_hex(char (&buffer)[128], const char* prefix, const char* digits) {
    char tail[34];
    (void)std::snprintf(tail, sizeof tail, "0x%s", digits);
    return join_prefix(buffer, prefix, tail);
}

char* write_hex(char* destination, const char* prefix, const char* digits) {
    if (destination == nullptr) return nullptr;
    const char* start = zv::or_empty(prefix);
    const std::size_t length = std::strlen(start);
    std::memmove(destination, start, length + 1);
    std::memcpy(destination + length, "0x", sizeof "0x");
    std::memcpy(destination + length + 2, digits, std::strlen(digits) + 1);
    return destination;
}

} // namespace

char* _itoa(int value, char* buffer, int) {
    if (buffer == nullptr) return nullptr;
    (void)std::snprintf(buffer, 12, "%d", value);
    return buffer;
}

char* _ltoa(long value, char* buffer, int) {
    if (buffer == nullptr) return nullptr;
    (void)std::snprintf(buffer, 21, "%ld", value);
    return buffer;
}

char* ItoA(int value) {
    return _itoa(value, ILtoAbuff, 10);
}

char* LtoA(long value) {
    return _ltoa(value, ILtoAbuff, 10);
}

char* ItoAHex(int value) {
    return _itoa(value, ILtoAbuffHex, 16);
}

char* LtoAHex(long value) {
    return _ltoa(value, ILtoAbuffHex, 16);
}

char* CatItoA(const char* prefix, int value) {
    return join_prefix(CatILtoAbuff, prefix, ItoA(value));
}

char* CatLtoA(const char* prefix, long value) {
    return join_prefix(CatILtoAbuff, prefix, LtoA(value));
}

char* CatItoAHex(char* destination, const char* prefix, int value) {
    return write_hex(destination, prefix, ItoAHex(value));
}

char* CatLtoAHex(char* destination, const char* prefix, long value) {
    return write_hex(destination, prefix, LtoAHex(value));
}

char* CatItoAHex1(const char* prefix, int value) {
    return join_hex(CatILtoAbuffHex1, prefix, ItoAHex(value));
}

char* CatLtoAHex1(const char* prefix, long value) {
    return join_hex(CatILtoAbuffHex1, prefix, LtoAHex(value));
}

char* CatItoAHex2(const char* prefix, int value) {
    return join_hex(CatILtoAbuffHex2, prefix, ItoAHex(value));
}

char* CatLtoAHex2(const char* prefix, long value) {
    return join_hex(CatILtoAbuffHex2, prefix, LtoAHex(value));
}

char* XX(char* text, char* output) {
    if (output == nullptr) return nullptr;
    if (text == nullptr || text[0] == '\0') {
        output[0] = '\0';
        return output;
    }
    // Unsigned, so that a number of any size wraps instead of overflowing.
    const auto number = static_cast<unsigned long>(std::strtol(text, nullptr, 10));
    return _ltoa(static_cast<long>(number * 28 + 13579), output, 10);
}

char* X1(char* text) {
    return XX(text, x1);
}

char* X2(char* text) {
    return XX(text, x2);
}

char* X3(char* text) {
    return XX(text, x3);
}

long DataToLong(char* date) {
    const std::string_view text = zv::or_empty(date);
    if (text.empty()) return 0;
    const auto number = [text](std::size_t position, std::size_t digits) {
        char part[5];
        zv::copy_text(part, position < text.size() ? text.substr(position, digits) : std::string_view());
        return std::strtol(part, nullptr, 10);
    };
    return number(6, 4) * 10000 + number(3, 2) * 100 + number(0, 2);
}
