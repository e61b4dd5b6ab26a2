#pragma once

#include "table.h"

#include <string>

namespace zvcrypt {

// Each gives a table that stands until it is asked for again. A file that has not changed since is not read
// anew.

// The configuration; an empty table when there is none.
[[nodiscard]] const Table& loadConfiguration();

// The card table that a host keeps in a folder of its own.
[[nodiscard]] const Table& loadHostTable(const std::string& folder);

[[nodiscard]] const Table& builtInTable();

} // namespace zvcrypt
