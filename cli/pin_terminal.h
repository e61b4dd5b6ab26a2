#pragma once

#include "cli/engine.h"
#include "host/pin.h"

#include <string>

namespace cli {

// Asks for the PIN at the terminal and shows nothing of what is typed. @throws Error when there is no PIN to be had
[[nodiscard]] Pin pin_from_terminal(const std::string& prompt);

} // namespace cli
