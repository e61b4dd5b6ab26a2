#pragma once

#include "crypt/session.h"

namespace zvcrypt {

// Keys with CKA_ALWAYS_AUTHENTICATE want the PIN between the begin and the end of each signature.

[[nodiscard]] bool asks_for_pin(const Session& session, CK_OBJECT_HANDLE key);

// Before the signature begins: ZVC_ERR_PIN_UNSENT when the PIN will not be given, because none is kept, one
// was refused in this process, or the next wrong one would lock it.
void require_signature_pin(const Session& session);

// Gives the PIN, once. ZVC_ERR_KEY_PIN when it is refused; it is then never given again in this process.
void give_signature_pin(const Session& session);

} // namespace zvcrypt
