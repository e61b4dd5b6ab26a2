#pragma once

#include "crypt/bytes.h"

#include <span>
#include <string>
#include <string_view>

namespace zvcrypt {

constexpr std::size_t BASE64_LINE_LENGTH = 64;
constexpr std::size_t BYTES_PER_BASE64_LINE = BASE64_LINE_LENGTH / 4 * 3;

// One line of at most 48 bytes, with its line feed.
[[nodiscard]] std::string base64_line(std::span<const unsigned char> bytes);

// How long that many bytes become in lines of 64 characters, each with its line feed.
[[nodiscard]] constexpr std::size_t base64_length(std::size_t bytes) {
    const std::size_t characters = (bytes + 2) / 3 * 4;
    return characters + (characters + BASE64_LINE_LENGTH - 1) / BASE64_LINE_LENGTH;
}

// Decodes piece by piece; blanks and line ends do not count. ZVC_ERR_BASE64 for anything else that is not
// base64. By hand: OpenSSL ends at a dash, and takes last groups that no encoder writes.
class Base64Decoder {
  public:
    [[nodiscard]] Bytes decode(std::string_view text);
    // The text is over: it must not end in the middle of a group.
    void finish() const;

  private:
    void add_group(Bytes& bytes);

    std::string group_;
    bool padded_ = false;
};

[[nodiscard]] Bytes decode_base64(std::string_view text);

} // namespace zvcrypt
