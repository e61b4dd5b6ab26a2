#pragma once

#include "cli/command_line.h"

#include <functional>
#include <string>
#include <vector>

namespace CLI { // NOLINT(readability-identifier-naming): the parser library's own name
class App;
}

namespace cli {

// Whether a command of that name is to be there.
using Wanted = std::function<bool(const std::string& name)>;

// Adds those of the program's commands that are wanted, with their options. The one that the command line names puts down
// in `chosen` what is to be done; that has to live as long as the parser.
void add_commands(CLI::App& app, Invocation& chosen, const Wanted& wanted);

// What the exit codes mean, below a command's help.
[[nodiscard]] const char* exit_codes_text();

// Texts one behind the other, each translated.
[[nodiscard]] std::string joined(const std::vector<const char*>& texts);

} // namespace cli
