#pragma once

#include <optional>

namespace zv {

// The slot whose description is part of a reader's name, as a module sees it apart from the library's own session.
[[nodiscard]] std::optional<unsigned> slot_of_reader(const char* reader, const char* module_path);

} // namespace zv
