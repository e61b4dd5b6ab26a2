#ifndef ZV_DIAG_MESSAGES_H
#define ZV_DIAG_MESSAGES_H

#include "pkcs11.h"

namespace zv {

/** The Italian text of a PKCS#11 result; empty for a code outside the table and before loadErrorCodes. */
[[nodiscard]] const char* errorMessage(CK_RV code);

} // namespace zv

#endif
