#pragma once

#include "cli/options.h"
#include "cli/report.h"
#include "host/plan.h"

#include <optional>

namespace cli {

// The plan itself, where nothing but that is wanted. Refuses one that is not the plan that was shown before.
// @throws Error
[[nodiscard]] std::optional<Report> plan_alone(const ChangingOptions& options, const Plan& plan);

[[nodiscard]] std::string in_words(const Plan& plan);
[[nodiscard]] Json as_json(const Plan& plan);

} // namespace cli
