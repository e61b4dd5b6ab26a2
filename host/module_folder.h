#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace zvhost {

// Folders that may hold modules: the build's or installation's own, then the system's.
[[nodiscard]] std::vector<std::filesystem::path> module_folders();
[[nodiscard]] std::vector<std::filesystem::path> own_folders();

// Finds the folder that holds a module: `given` when it is not empty, else the first of module_folders().
//
// @return the folder, absolute
// @throws Error when the module is not there.
[[nodiscard]] std::filesystem::path folder_of_module(const std::string& module, const std::string& given);

} // namespace zvhost
