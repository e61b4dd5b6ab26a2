#pragma once

#include "cli/command_line.h"
#include "host/error.h"

namespace cli {

// What a command came to, as a text on standard output or as JSON there; what it stopped at, as a text on standard error
// or as JSON. @throws Error where standard output takes nothing

void print_report(const Invocation& invocation, const Report& report);
Exit print_stop(const Invocation& invocation, const Error& stop);
// As a text, in any case.
Exit tell_stop(const Error& stop);

} // namespace cli
