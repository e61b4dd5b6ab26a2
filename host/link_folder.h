#pragma once

#include <filesystem>
#include <string>

namespace zvhost {

// A link of that name to a file, in a folder of this process's own, which nobody else can enter and which goes when the
// process ends. Empty when it cannot be made.
[[nodiscard]] std::filesystem::path link_named(const std::string& name, const std::filesystem::path& file);

} // namespace zvhost
