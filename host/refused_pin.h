#pragma once

#include "host/error.h"
#include "host/pin.h"
#include "pkcs11.h"

namespace zvhost {

// Whether a result says that the card did not take a PIN.
[[nodiscard]] bool refuses_pin(CK_RV result);

// What to do about a PIN that was refused.
[[nodiscard]] Advice check_pin();

// A failure of what was given the PIN. One that the card refused is not sent again: each time would cost a try.
[[nodiscard]] Error with_pin(Pin& pin, Error error);

} // namespace zvhost
