#pragma once

#include "host/install.h"
#include "host/pin_gate.h"
#include "host/request.h"

#include <functional>

namespace zvhost {

// Gives the card, opened to be changed. @throws Error
using OpenCard = std::function<OpenedCard()>;

// The plans of request.h and install.h, for a card that may be open already. @throws Error
[[nodiscard]] PlannedRequest plan_request(const RequestWishes& wishes, const OpenCard& open);
[[nodiscard]] PlannedInstall plan_install(const InstallWishes& wishes, const OpenCard& open);

} // namespace zvhost
