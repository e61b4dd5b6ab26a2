#pragma once

#include "cli/install_plan.h"

namespace cli {

// Refuses a certificate that is worth nothing to the card's holder: one that has ended, is another person's or for
// another purpose; and, where the old one is removed, one that ends before it or does not begin yet. What
// options.accept names is taken.
//
// @throws Stop
void refuse_worthless(const InstallOptions& options, const InstallPlan& plan, const IssuedFiles& files,
                      const CardView& view);

// Tells who issued the new certificate when it was another than the old one's; empty when it was the same.
[[nodiscard]] std::string new_issuer(const InstallPlan& plan);

} // namespace cli
