#pragma once

#include <string_view>

namespace zv {

[[nodiscard]] inline std::string_view trim_right(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

// Takes the next line off the front of a text, whose trailing blanks go first. False at the end of the text.
inline bool next_line(std::string_view& text, std::string_view& line) {
    text = trim_right(text);
    if (text.empty()) return false;
    line = text.substr(0, text.find('\n'));
    text.remove_prefix(line.size() < text.size() ? line.size() + 1 : line.size());
    return true;
}

// The text behind a key that stands anywhere in a line, its trailing blanks removed. False when it does not.
inline bool value_behind(std::string_view line, std::string_view key, std::string_view& value) {
    const std::size_t place = line.find(key);
    if (place == std::string_view::npos) return false;
    value = trim_right(line.substr(place + key.size()));
    return true;
}

} // namespace zv
