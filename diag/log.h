#pragma once

#include <optional>
#include <string_view>

// The user's log. A log that cannot be opened or written stops nothing: there is nowhere to say so.
namespace zv {

// Where the log is, 512 characters at most; empty without a home directory: nothing is then logged. Made on
// the first call; what a caller writes there counts from then on.
[[nodiscard]] char* log_path();

// Appends a line; null and empty become a word. Empties a log that has grown too long first.
void write_line(const char* message);

// Of an entry's bytes: a line. Nothing: not even a line end.
using Datum = std::optional<std::string_view>;

// Appends a title and two data; null is an empty title. Never empties the log.
void write_entry(const char* title, Datum first, Datum second);

} // namespace zv
