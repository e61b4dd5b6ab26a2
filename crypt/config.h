#pragma once

#include "crypt/table.h"

#include <string>

namespace zvcrypt {

// Each gives a table that stands until it is asked for again. A file that has not changed since is not read
// anew.

// The configuration; an empty table when there is none.
[[nodiscard]] const Table& load_configuration();

// The card table that a host keeps in a folder of its own.
[[nodiscard]] const Table& load_host_table(const std::string& folder);

[[nodiscard]] const Table& built_in_table();

} // namespace zvcrypt
