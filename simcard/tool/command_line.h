#pragma once

namespace simcard {

enum ExitCode { done = 0, refused = 1, wrong_usage = 2, failed = 3 };

// Reads the command line and runs the command that it names. A command's failure is thrown.
[[nodiscard]] int run_command_line(int argc, char** argv);

} // namespace simcard
