#pragma once

#include "cli/engine.h"
#include "host/pin.h"

namespace cli {

// Takes the PIN from a descriptor that whoever started the program has opened: one line, or all there is. The
// descriptor is closed then. @throws Error when there is none, or its PIN's form is refused.
[[nodiscard]] Pin pin_from_descriptor(int fd);

} // namespace cli
