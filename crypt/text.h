#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zvcrypt {

// Copies a UTF-8 text with its terminator into a buffer. A text that does not fit ends after the last whole
// character that does, "\xNN" and "\UNNNN" being one each, and the result is false.
[[nodiscard]] bool copy_text(std::string_view text, std::span<char> buffer) noexcept;

// A buffer of an exported operation that gives its size as an int; a size below 1 is ZVC_ERR_ARGUMENT.
// Empties it.
[[nodiscard]] std::span<char> output_buffer(char* buffer, int size);

// As copy_text, but what does not fit is ZVC_ERR_CUT.
void write_text(std::string_view text, std::span<char> buffer);

// The same for a text that ends after a whole piece.
void write_pieces(const std::vector<std::string>& pieces, std::span<char> buffer);

[[nodiscard]] std::string upper_hex(std::span<const unsigned char> bytes);

// The text without blanks and NULs around it.
[[nodiscard]] std::string_view trimmed(std::string_view text) noexcept;

} // namespace zvcrypt
