#pragma once

#include <string>

namespace simcard {

// The value of an environment variable; empty when it is not set, or when the process runs with the rights
// of another user than the one who started it.
[[nodiscard]] std::string environment(const char* name);

} // namespace simcard
