#include "request/pkcs10.h"

#include <string_view>

namespace zv {

namespace {

constexpr std::string_view HEADER = "-----BEGIN CERTIFICATE REQUEST-----\n";
constexpr std::string_view FOOTER = "\n-----END CERTIFICATE REQUEST-----\n";
// The text is broken into lines of 64 characters later, in the same buffer.
constexpr std::size_t LINE_LENGTH = 64;

char* encode(der::View bytes, char* out) {
    static constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t given = bytes.size() - i;
        const auto byte_at = [&](std::size_t offset) {
            return offset < given ? unsigned{bytes[i + offset]} : 0U;
        };
        const unsigned group = byte_at(0) << 16 | byte_at(1) << 8 | byte_at(2);
        *out++ = alphabet[group >> 18];
        *out++ = alphabet[group >> 12 & 0x3F];
        *out++ = given > 1 ? alphabet[group >> 6 & 0x3F] : '=';
        *out++ = given > 2 ? alphabet[group & 0x3F] : '=';
    }
    return out;
}

} // namespace

bool write_pem(der::View request, char* pem_out) {
    const std::size_t body = (request.size() + 2) / 3 * 4;
    const std::size_t length = HEADER.size() + body + FOOTER.size();
    if (length + body / LINE_LENGTH >= PEM_SIZE) return false;
    char* end = HEADER.copy(pem_out, HEADER.size()) + pem_out;
    end = encode(request, end);
    end += FOOTER.copy(end, FOOTER.size());
    *end = '\0';
    return true;
}

} // namespace zv
