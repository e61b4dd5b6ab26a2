#pragma once

#include "cli/pin.h"

#include <string>

namespace cli {

// Takes the PIN from a file, or from the terminal without echo when `file` is empty, and checks its form.
//
// A file holds the PIN and nothing else; one line end behind it does not count.
//
// @throws Stop when there is no PIN to be had or its form is refused.
[[nodiscard]] Pin take_pin(const std::string& file, const std::string& reader);

} // namespace cli
