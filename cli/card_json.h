#pragma once

#include "cli/engine.h"
#include "cli/json.h"
#include "host/card_facts.h"
#include "host/card_list.h"
#include "host/on_card.h"

#include <ctime>
#include <string>

namespace cli {

// The same facts have the same names in what every command prints with --json.

// {"reader", "module", "services_card", "label", "serial", "pin"}, as far as they are known.
[[nodiscard]] Json as_json(const CardFacts& card);

// {"label", "serial", "pin"}
[[nodiscard]] Json as_json(const CardState& state);

// An array of {"id", "certificates", "public_key", "private_key"}; null when the card was not read.
[[nodiscard]] Json as_json(const OnCard& contents);

// A name as an array of {"CN": "..."}, in its order.
[[nodiscard]] Json as_json(const DistinguishedName& name);

// {"id": ...} or {"none_free": true}, or null without a proposal.
[[nodiscard]] Json as_json(const Proposal& proposal);

// "2025-12-04T10:00:00Z"
[[nodiscard]] std::string instant(std::time_t time);

// A text, or null where it is empty.
[[nodiscard]] Json or_null(const std::string& text);

} // namespace cli
