#pragma once

#include "pkcs11.h"

namespace zv {

// The Italian text of a PKCS#11 result; empty for a code outside the table and before loadErrorCodes.
[[nodiscard]] const char* error_message(CK_RV code);

} // namespace zv
