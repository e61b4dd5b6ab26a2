#pragma once

#include <string>

// The library's log, in this process's own folder. While fuzzing it is memory: an execution makes hundreds of entries,
// each of which opens the log, and the system's calls took longer than all else.
namespace fuzz {

const std::string& log_path();
// What was logged since the last call.
std::string take_log();

} // namespace fuzz
