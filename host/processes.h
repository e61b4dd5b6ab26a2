#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zvhost {

// A process that may have a card open, and what says so.
struct CardProcess {
    long id = 0;
    std::string program;
    std::string mapped; // the library in its memory, or the service's socket
};

struct CardProcesses {
    std::vector<CardProcess> found;
    long hidden = 0; // processes that this user may not look at
};

// Looks for processes other than this one that have PC/SC's library or one of the modules in memory. None where the
// system does not let processes be looked at.
//
// @param modules  paths of modules, in their canonical form
[[nodiscard]] std::optional<CardProcesses> card_processes(const std::vector<std::string>& modules);

} // namespace zvhost
