#pragma once

#include <chrono>

namespace simcard {

// From here on SIGTERM, SIGINT and SIGHUP are held back until wait_readable(), so that none is lost.
void hold_stop_signals();

enum class Wait { readable, stopped, timed_out };

// Waits until the descriptor can be read or one of those signals came; below zero milliseconds: for ever.
// A negative descriptor is never readable.
[[nodiscard]] Wait wait_readable(int descriptor, std::chrono::milliseconds limit);

} // namespace simcard
