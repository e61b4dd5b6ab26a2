#pragma once

#include <functional>

namespace bench {

using Work = std::function<void()>;

// Medians of two works that take turns, each after a preparation that is not timed.
struct Turns {
    double work, bare; // milliseconds
    double ratio;      // of the two of a turn
};
Turns in_turns(const Work& prepare, const Work& work, const Work& bare);

} // namespace bench
