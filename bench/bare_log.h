#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace bench {

// The entries of a log: each begins with its time.
std::vector<std::string> entries_of(const std::string& log);

// Appends an entry as simply as it can be done: open, write, close.
void write_bare(const std::filesystem::path& log, const std::string& entry);

} // namespace bench
