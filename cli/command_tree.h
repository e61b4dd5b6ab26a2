#pragma once

#include "cli/command_line.h"

#include <string>
#include <vector>

namespace CLI { // NOLINT(readability-identifier-naming): the parser library's own name
class App;
}

namespace cli {

// When a command's options are made: for the one that the command line names, or for all.
enum class Declared { when_named, all };

// Adds the program's commands with their options. The one that the command line names puts down in `chosen` what is to be
// done; that has to live as long as the parser.
void add_commands(CLI::App& app, Invocation& chosen, Declared when);

// What the exit codes mean, below a command's help.
[[nodiscard]] const char* exit_codes_text();

// Texts one behind the other, each translated.
[[nodiscard]] std::string joined(const std::vector<const char*>& texts);

} // namespace cli
