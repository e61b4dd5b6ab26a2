#pragma once

#include "host/install_plan.h"

namespace zvhost {

// Plans what becomes of plan.old: what is saved of it, and with wishes.remove_old what goes.
//
// @throws Error when more would go than it, or what goes could not be saved
void plan_removal(InstallPlan& plan, const InstallWishes& wishes, const std::string& card,
                  const CardView& view);

} // namespace zvhost
