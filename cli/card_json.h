#pragma once

#include "cli/inventory.h"
#include "cli/outcome.h"

#include <functional>

namespace cli {

// The same facts have the same names in what every command prints with --json.

// {"reader", "module", "label", "serial", "services_card", "pin"}
[[nodiscard]] Json card_json(const OpenedCard& card);

// Does what is done with an opened card. A Stop takes along which card that was and, after a failure, what is
// on it then. @throws Stop
[[nodiscard]] Report about_card(OpenedCard& card, const std::function<Report()>& work);

// An array of {"kind", "id"}.
[[nodiscard]] Json pending_json(const Inventory& inventory);

// A name as an array of {"CN": "..."}, in its order.
[[nodiscard]] Json name_json(const DistinguishedName& name);

// "2025-12-04T10:00:00Z"
[[nodiscard]] std::string instant(std::time_t time);

// {"id": ...} or {"none_free": true}, or null without a proposal.
[[nodiscard]] Json proposal_json(const Proposal& proposal);

} // namespace cli
