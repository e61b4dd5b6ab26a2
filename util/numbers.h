#pragma once

#include "util/text.h"

// Numbers as texts, and texts as numbers.
namespace zv {

using NumberText = FixedText<128>;

// Writes number in decimal; 21 bytes hold any.
void write_decimal(char* buffer, std::size_t size, long number);

// The prefix, cut so that the whole fits, and the number in decimal.
[[nodiscard]] NumberText with_decimal(const char* prefix, long number);

// The same with "0x" in front of the decimal digits: the form that the log's readers expect.
[[nodiscard]] NumberText with_hex(const char* prefix, long number);

// The same into a buffer with 23 bytes more than the prefix has characters; the prefix may stand in it. Returns it.
char* write_hex(char* buffer, const char* prefix, long number);

// A date DD?MM?YYYY as the number YYYYMMDD; 0 for an empty text. A part that is no number counts as 0.
[[nodiscard]] long date_number(std::string_view date);

// n x 28 + 13579, n the number in the text.
[[nodiscard]] long encoded_number(const char* text);

} // namespace zv
