#pragma once

#include "simcard/module/rooms.h"
#include "simcard/module/rules.h"

namespace simcard {

// Makes the answer of a call that succeeded absurd. Writes nothing past the caller's buffers.
void falsify(Absurdity kind, const Call& call, const Rooms& rooms);

} // namespace simcard
