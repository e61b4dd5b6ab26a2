#pragma once

#include "pkcs11.h"

#include <span>

namespace zv {

// Signs the SHA-1 digest of data with a key of the card: the digest here, the RSA operation there. length is the room
// for the signature, then what the module left there. Returns 0, CKR_USER_NOT_LOGGED_IN, the reason not yet told, or
// ZV_FAILED.
[[nodiscard]] unsigned short sign_on_card(std::span<unsigned char> data, CK_OBJECT_HANDLE private_key,
                                          unsigned char* signature, unsigned long* length);

} // namespace zv
