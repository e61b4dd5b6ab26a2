#include "simcard/common/hexadecimal.h"

#include <charconv>

namespace simcard {

std::string hexadecimal(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const char byte : bytes) {
        text += digits[static_cast<unsigned char>(byte) >> 4];
        text += digits[static_cast<unsigned char>(byte) & 0xF];
    }
    return text;
}

std::optional<std::string> from_hexadecimal(std::string_view digits) {
    if (digits.size() % 2 != 0) return std::nullopt;
    std::string bytes;
    for (const char* at = digits.data(); at != digits.data() + digits.size(); at += 2) {
        unsigned char byte = 0;
        const auto [end, error] = std::from_chars(at, at + 2, byte, 16);
        if (error != std::errc{} || end != at + 2) return std::nullopt;
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

} // namespace simcard
