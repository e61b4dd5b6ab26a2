#pragma once

#include "cli/inventory.h"
#include "cli/outcome.h"

namespace cli {

// The same facts have the same names in what every command prints with --json.

/// {"reader", "module", "label", "serial", "services_card", "pin"}
[[nodiscard]] Json card_json(const OpenedCard& card);

/// Does what is done with an opened card; a Stop takes along which card that was.
template <class Work> [[nodiscard]] Report about_card(const OpenedCard& card, Work work) {
    try {
        return work();
    } catch (Stop& stop) {
        stop.about(card_json(card));
        throw;
    }
}

/// An array of {"kind", "id"}.
[[nodiscard]] Json waiting_json(const Inventory& inventory);

/// A name as an array of {"CN": "..."}, in its order.
[[nodiscard]] Json name_json(const DistinguishedName& name);

/// "2025-12-04T10:00:00Z"
[[nodiscard]] std::string instant(std::time_t time);

/// {"id": ...} or {"none_free": true}, or null without a proposal.
[[nodiscard]] Json proposal_json(const Proposal& proposal);

} // namespace cli
