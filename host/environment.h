#pragma once

#include <string>

namespace zvhost {

// A variable of the environment; empty when it is not there, and in a set-user-id program, whose environment belongs to the
// caller and not to its owner.
[[nodiscard]] std::string environment(const char* name);

} // namespace zvhost
