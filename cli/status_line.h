#pragma once

#include <string>

namespace cli {

// A line at the bottom of the terminal that says how it stands now, each in the place of the one before. Nothing of it
// where standard error is no terminal.
void show_status_line(const std::string& text);

// Takes it away: before anything else is written, and at the end. Without one nothing happens.
void clear_status_line();

} // namespace cli
