#pragma once

#include "cli/report.h"

#include <functional>

namespace cli {

// What the command line asks for.
struct Invocation {
    std::string command;
    bool json = false;
    bool uses_library = true; // help, or what is wrong with the command line, needs no log
    std::function<Report()> run;
};

// Reads the command line. Help, the version or what is wrong with it is the answer of what is returned.
[[nodiscard]] Invocation read_command_line(int argc, char** argv);

} // namespace cli
