#ifndef ZV_UTIL_TEXT_H
#define ZV_UTIL_TEXT_H

#include <algorithm>
#include <cstddef>
#include <string_view>

/** Bounded work on fixed text buffers. Every function leaves the destination terminated within its size. */
namespace zv {

/** Copies as much of text as fits. Returns false when it was cut. */
bool copyText(char* destination, std::size_t size, std::string_view text);

/** Appends as much of text as fits. Returns false when it was cut. */
bool appendText(char* destination, std::size_t size, std::string_view text);

template <std::size_t N> bool copyText(char (&destination)[N], std::string_view text) {
    return copyText(destination, N, text);
}

template <std::size_t N> bool appendText(char (&destination)[N], std::string_view text) {
    return appendText(destination, N, text);
}

/** Fills buffers with zeros. */
template <std::size_t... N> void clear(char (&... buffers)[N]) {
    (std::fill_n(buffers, N, '\0'), ...);
}

/** The text in a buffer that may lack its terminator. */
[[nodiscard]] std::string_view boundedText(const char* buffer, std::size_t size);

/** At most so many bytes of a text; a longer one ends in front of the UTF-8 character that would be cut. */
[[nodiscard]] std::string_view cutAtCharacter(std::string_view text, std::size_t most);

[[nodiscard]] inline const char* orEmpty(const char* text) {
    return text != nullptr ? text : "";
}

/**
 * Replaces the first pattern in a text, whatever the case of its letters; the text grows or shrinks in place and is cut to its
 * size. scratch holds what follows the pattern, of the same size. Returns false when there is none.
 */
bool replaceFirst(char* text, std::size_t size, const char* pattern, const char* replacement, char* scratch);

[[nodiscard]] inline bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace zv

#endif
