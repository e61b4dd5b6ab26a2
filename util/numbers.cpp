#include "util/numbers.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace zv {

namespace {

NumberText with_tail(const char* prefix, std::string_view tail) {
    NumberText whole;
    copy_text(whole.text, sizeof whole.text - tail.size(), or_empty(prefix));
    append_text(whole.text, tail);
    return whole;
}

} // namespace

void write_decimal(char* buffer, std::size_t size, long number) {
    (void)std::snprintf(buffer, size, "%ld", number);
}

NumberText with_decimal(const char* prefix, long number) {
    char digits[20] = {};
    return with_tail(prefix, {digits, std::to_chars(digits, std::end(digits), number).ptr});
}

NumberText with_hex(const char* prefix, long number) {
    char digits[22] = {'0', 'x'};
    return with_tail(prefix, {digits, std::to_chars(digits + 2, std::end(digits), number).ptr});
}

char* write_hex(char* buffer, const char* prefix, long number) {
    const std::size_t length = std::strlen(prefix);
    std::memmove(buffer, prefix, length + 1);
    const NumberText tail = with_hex("", number);
    std::memcpy(buffer + length, tail.text, std::strlen(tail) + 1);
    return buffer;
}

long date_number(std::string_view date) {
    if (date.empty()) return 0;
    const auto number = [date](std::size_t position, std::size_t digits) {
        char part[5];
        copy_text(part, position < date.size() ? date.substr(position, digits) : std::string_view());
        return std::strtol(part, nullptr, 10);
    };
    return number(6, 4) * 10000 + number(3, 2) * 100 + number(0, 2);
}

long encoded_number(const char* text) {
    // Unsigned, so that a number of any size wraps instead of overflowing.
    const auto number = static_cast<unsigned long>(std::strtol(text, nullptr, 10));
    return static_cast<long>(number * 28 + 13579);
}

} // namespace zv
