#pragma once

#include "simcard/module/rooms.h"

#include <optional>
#include <string>

namespace simcard {

// One line of text, without its end, that says what a call was asked, what it gave and its result. A PIN and
// its length are left out, and so are the values of private keys. No result: the process ends in the call.
[[nodiscard]] std::string describe(const Call& call, const Rooms& rooms, std::optional<CK_RV> result);

} // namespace simcard
