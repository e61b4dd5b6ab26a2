#pragma once

#include "pkcs11.h"

namespace zv {

// Loads a module, opens a session on a slot identifier as it is, logs the user in and says what the module said. Closes
// nothing first. A null text is empty.
[[nodiscard]] CK_RV open_slot(int slot_id, const char* pin, const char* module_path);

} // namespace zv
