#pragma once

#include "exit_codes.h"

namespace simcard {

// Reads the command line and runs the command that it names. A command's failure is thrown.
[[nodiscard]] zv::ExitCode run_command_line(int argc, char** argv);

} // namespace simcard
