#pragma once

#include "cli/engine.h"
#include "host/sentence.h"

#include <chrono>
#include <functional>
#include <optional>

namespace cli {

// For CardChoice::wait: says once what is missing and waits a second each time, until the time is up. Ctrl-C ends it at
// once. @throws Error there
[[nodiscard]] std::function<bool(const Sentence&)> waiting(std::optional<std::chrono::seconds> longest);

} // namespace cli
