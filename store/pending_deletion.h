#pragma once

#include "card/full_opener.h"

namespace zv {

// Destroys every object whose label has the pending prefix, by a search for each. May throw; false when a call
// failed. The last search stays open.
[[nodiscard]] bool delete_pending_objects();

// Destroys the pending pair and opens the session anew.
[[nodiscard]] bool delete_pending_pair(unsigned slot_index, const LoginData& login);

} // namespace zv
