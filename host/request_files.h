#pragma once

#include "host/lock.h"

namespace zvhost {

// Holds the library's temporary files of fixed names, so that no other request gets into them, and sees that they can
// be made: found out later, that costs a pair of keys that nobody asked for.
//
// @throws Error
[[nodiscard]] Lock hold_request_files();

} // namespace zvhost
