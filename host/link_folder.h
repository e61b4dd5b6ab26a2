#pragma once

#include <filesystem>
#include <string>

namespace zvhost {

// Has a folder of this process's own, which nobody else can enter and which goes when the process ends. What a process that
// was killed has left goes now. False when it cannot be made.
[[nodiscard]] bool has_link_folder();

// A link of that name to a file, in that folder. Empty when it cannot be made.
[[nodiscard]] std::filesystem::path link_named(const std::string& name, const std::filesystem::path& file);

} // namespace zvhost
