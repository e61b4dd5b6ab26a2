#pragma once

#include "host/module.h"

namespace zvhost {

// An RSA public key as other programs read it (SubjectPublicKeyInfo, DER), from its two numbers; empty when
// they are none.
[[nodiscard]] Bytes public_key_of(const Bytes& modulus, const Bytes& exponent);

// The RSA modulus of such a key, without leading zeros; empty for another kind of key.
[[nodiscard]] Bytes modulus_of_public_key(const Bytes& der);

} // namespace zvhost
