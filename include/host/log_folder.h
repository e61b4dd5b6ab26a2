#pragma once

#include "host/sentence.h"

#include <string>

namespace zvhost {

// Path of the library's log.
[[nodiscard]] std::string log_path();

// Has the library write its log to another file than the user's, in this process.
void log_to(const std::string& path);

// Makes the log's folder (mode 0700) when there is none; the library writes no log without it.
// Returns a sentence when it cannot be made, else an empty one.
[[nodiscard]] Sentence make_log_folder();

} // namespace zvhost
