#pragma once

#include <functional>
#include <vector>

namespace bench {

using Work = std::function<void()>;

// Median milliseconds of works that take turns, each after a preparation that is not timed.
std::vector<double> in_turns(const Work& prepare, const std::vector<Work>& works);

} // namespace bench
