#pragma once

#include "host/install_plan.h"

namespace zvhost {

// Refuses a certificate that is worth nothing to the card's holder: one that has ended, is another person's or for
// another purpose; and, where the old one is removed, one that ends before it or does not begin yet. What
// wishes.accept names is taken.
//
// @throws Error
void refuse_worthless(const InstallWishes& wishes, const InstallPlan& plan, const IssuedFiles& files,
                      const CardView& view);

// Tells who issued the new certificate when it was another than the old one's; empty when it was the same.
[[nodiscard]] Sentence new_issuer(const InstallPlan& plan);

} // namespace zvhost
