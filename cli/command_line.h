#pragma once

#include "cli/outcome.h"

#include <functional>
#include <optional>

namespace cli {

/// What the command line asks for.
struct Invocation {
    std::string command;
    bool json = false;
    bool uses_library = true; ///< help, or what is wrong with the command line, needs no log
    std::function<Report()> run;
};

/**
 * Reads the command line. Prints help, the version or what is wrong with it by itself, unless --json is given:
 * then running it answers with that.
 *
 * @param[out] exit  the exit code, when there is nothing to run
 * @return none when there is nothing to run
 */
[[nodiscard]] std::optional<Invocation> read_command_line(int argc, char** argv, int& exit);

} // namespace cli
