#pragma once

#include "pkcs11.h"

namespace zv {

// Fills errorMessages.
void load_messages();

// The Italian text of a PKCS#11 result; empty for a code outside the table and before load_messages.
[[nodiscard]] const char* error_message(CK_RV code);

} // namespace zv
