#include <string_view>

#include "request/pkcs10.h"

namespace zv {

namespace {

constexpr std::string_view HEADER = "-----BEGIN CERTIFICATE REQUEST-----\n";
constexpr std::string_view FOOTER = "\n-----END CERTIFICATE REQUEST-----\n";
// The text is broken into lines of 64 characters later, in the same buffer.
constexpr std::size_t LINE_LENGTH = 64;

char* encode(der::View bytes, char* out) {
    static constexpr char ALPHABET[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t given = bytes.size() - i;
        const auto byteAt = [&](std::size_t offset) {
            return offset < given ? unsigned{bytes[i + offset]} : 0U;
        };
        const unsigned group = byteAt(0) << 16 | byteAt(1) << 8 | byteAt(2);
        *out++ = ALPHABET[group >> 18];
        *out++ = ALPHABET[group >> 12 & 0x3F];
        *out++ = given > 1 ? ALPHABET[group >> 6 & 0x3F] : '=';
        *out++ = given > 2 ? ALPHABET[group & 0x3F] : '=';
    }
    return out;
}

} // namespace

bool writePem(der::View request, char* pemOut) {
    const std::size_t body = (request.size() + 2) / 3 * 4;
    const std::size_t length = HEADER.size() + body + FOOTER.size();
    if (length + body / LINE_LENGTH >= PEM_SIZE) return false;
    char* end = HEADER.copy(pemOut, HEADER.size()) + pemOut;
    end = encode(request, end);
    end += FOOTER.copy(end, FOOTER.size());
    *end = '\0';
    return true;
}

} // namespace zv
