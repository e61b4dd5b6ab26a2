#pragma once

#include "cli/install_plan.h"

namespace cli {

// Plans what becomes of plan.old: what is saved of it, and with options.remove_old what goes.
//
// @throws Stop when more would go than it, or what goes could not be saved
void plan_removal(InstallPlan& plan, const InstallOptions& options, const std::string& card,
                  const CardView& view);

} // namespace cli
