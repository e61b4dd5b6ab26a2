#pragma once

#include "host/install.h"
#include "host/install_plan.h"
#include "host/inventory.h"
#include "host/proof.h"

#include <string>

namespace zvhost {

// What came of an installation, and what can be done about it.

// Reads what is on the card and throws, with that and what to do.
[[noreturn]] void stop_install(OpenedCard& card, const InstallPlan& plan, const std::string& backup,
                               Error stop);

// What came of it once the certificate was stored and proved. @throws Error where something of the old one stayed
[[nodiscard]] Installed installed_now(const OpenedCard& card, const InstallPlan& plan,
                                      const std::string& backup, const Proof& proof);

// For a certificate that is on the card under that identifier: a run before this one may have been broken off after storing
// it, so that it is proved now.
[[nodiscard]] Error because_stored(OpenedCard& card, const IssuedFiles& files, const Inventory& inventory,
                                   const CardView& view, const std::string& id);

[[nodiscard]] Error because_unproved(const Proof& proof);

} // namespace zvhost
