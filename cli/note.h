#pragma once

#include <string>

namespace cli {

// A text without what a terminal would take as a command; cards and certificates may hold anything.
[[nodiscard]] std::string printable(std::string text);

// Tells the person at the terminal what goes on, on standard error: results alone go to standard output.
void note(const std::string& line);

} // namespace cli
