#pragma once

#include "cli/plan_shown.h"
#include "cli/progress_lines.h"

#include <utility>

namespace cli {

// Carries out what is planned and reports on what came of it; shows the plan where nothing but that is wanted.
// @throws Error
template <class Planned, class ReportOn>
[[nodiscard]] Report carry_out(const ChangingOptions& options, Planned planned, const ReportOn& report_on) {
    if (auto plan = plan_alone(options, planned.plan())) return *std::move(plan);
    ProgressLines progress;
    Report report = report_on(planned.apply(progress));
    if (report.exit == Exit::done) progress.done();
    return report;
}

} // namespace cli
