#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

namespace zvhost {

// What files that appear whole or not at all are made with. Each gives 0, or the system's error number.

// Makes a file of that text, on the disk; there must be none of that name.
[[nodiscard]] int make_file(const std::string& path, std::string_view text, mode_t mode);

// Has the names in a file's folder written to the disk.
[[nodiscard]] int sync_folder_of(const std::string& path);

// A name beside that of a file, for this process alone; one that was killed may have left a file of that name, which is
// removed.
[[nodiscard]] std::string draft_beside(const std::string& path);

// Puts a file that only its owner may read in the place of one that may be there: whole, or not at all.
[[nodiscard]] int replace_file(const std::string& path, std::string_view text);

} // namespace zvhost
