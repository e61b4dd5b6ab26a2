#pragma once

#include <string>

namespace cli {

// Sees that descriptors 0 to 2 are open, so that no file gets one of their numbers and is written into.
// @return whether standard output was open
[[nodiscard]] bool open_standard_descriptors();

// Writes to standard output and sees that it arrives. @throws Error
void print_out(const std::string& text);

} // namespace cli
