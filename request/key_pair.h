#pragma once

#include "request/pkcs10.h"

namespace zv {

// Bits of a new pair.
extern unsigned long keySize;

// Has the card generate a pair under the pending label; hPublicKey and hPrivateKey are its handles. Returns
// 0, also after a code that is not known to mean failure (reading the key back decides), or ZV_FAILED
// with szSockMsg set.
[[nodiscard]] unsigned short generate_key_pair(const LoginData& login);

} // namespace zv
