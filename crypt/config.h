#pragma once

#include "table.h"

#include <string>

namespace zvcrypt {

// The configuration; an empty table when there is none.
[[nodiscard]] Table loadConfiguration();

// The card table that a host keeps in a folder of its own.
[[nodiscard]] Table loadHostTable(const std::string& folder);

[[nodiscard]] Table builtInTable();

} // namespace zvcrypt
