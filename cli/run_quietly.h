#pragma once

#include <string>
#include <vector>

namespace cli {

// Runs a program of the search path, which gets no input and whose output nobody sees.
// @return whether it could be run and ended with 0
[[nodiscard]] bool run_quietly(const std::vector<std::string>& command);

// Starts one in the same way, in a session of its own: it stays when this program, its terminal or its service ends.
// @return whether it could be started
[[nodiscard]] bool start_apart(const std::vector<std::string>& command);

} // namespace cli
