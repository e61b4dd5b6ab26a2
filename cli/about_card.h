#pragma once

#include "cli/pin_gate.h"
#include "cli/report.h"

#include <functional>

namespace cli {

// Does what is done with an opened card. A Stop takes along which card that was and, after a failure, what is
// on it then. @throws Stop
[[nodiscard]] Report about_card(OpenedCard& card, const std::function<Report()>& work);

} // namespace cli
