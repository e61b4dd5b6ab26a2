#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

// Bounded work on fixed text buffers. Every function leaves the destination terminated within its size.
namespace zv {

// Copies as much of text as fits. Returns false when it was cut.
bool copy_text(char* destination, std::size_t size, std::string_view text);

// Appends as much of text as fits. Returns false when it was cut.
bool append_text(char* destination, std::size_t size, std::string_view text);

template <std::size_t N> bool copy_text(char (&destination)[N], std::string_view text) {
    return copy_text(destination, N, text);
}

template <std::size_t N> bool append_text(char (&destination)[N], std::string_view text) {
    return append_text(destination, N, text);
}

// Fills buffers with zeros.
template <std::size_t... N> void clear(char (&... buffers)[N]) {
    (std::fill_n(buffers, N, '\0'), ...);
}

// The text in a buffer that may lack its terminator.
[[nodiscard]] std::string_view bounded_text(const char* buffer, std::size_t size);

// At most so many bytes of a text; a longer one ends in front of the UTF-8 character that would be cut.
[[nodiscard]] std::string_view cut_at_character(std::string_view text, std::size_t most);

[[nodiscard]] inline const char* or_empty(const char* text) {
    return text != nullptr ? text : "";
}

// A short text by value.
template <std::size_t N> struct FixedText {
    char text[N] = {};

    operator const char*() const { return text; }
};

// One text behind the other, cut to 255 characters; null is empty.
[[nodiscard]] FixedText<256> join(const char* first, const char* second);

// Where needle begins in haystack, whatever the case of the letters; npos when it does not.
[[nodiscard]] std::size_t find_ignoring_case(std::string_view haystack, std::string_view needle);

// Bytes of a buffer less the zeros at its end.
[[nodiscard]] std::size_t length_without_zeros(std::string_view bytes);

// Replaces the first pattern in a text, whatever the case of its letters; the text grows or shrinks in place
// and is cut to its size. scratch holds what follows the pattern, of the same size. Returns false when there
// is none.
bool replace_first(char* text, std::size_t size, const char* pattern, const char* replacement, char* scratch);

[[nodiscard]] inline bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace zv
