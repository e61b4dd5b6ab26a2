#pragma once

#include "host/card_facts.h"
#include "host/card_list.h"
#include "host/on_card.h"
#include "words/json.h"

#include <ctime>
#include <string>

namespace words {

// Cards as JSON: the same facts have the same names wherever they are told.

// {"reader", "module", "services_card", "label", "serial", "pin"}, as far as they are known.
[[nodiscard]] Json as_json(const zvhost::CardFacts& card);

// {"label", "serial", "pin"}
[[nodiscard]] Json as_json(const zvhost::CardState& state);

// An array of {"id", "certificates", "public_key", "private_key"}; null when the card was not read.
[[nodiscard]] Json as_json(const zvhost::OnCard& contents);

// A name as an array of {"CN": "..."}, in its order.
[[nodiscard]] Json as_json(const zvhost::DistinguishedName& name);

// {"id": ...} or {"none_free": true}, or null without a proposal.
[[nodiscard]] Json as_json(const zvhost::Proposal& proposal);

// All that a card holds; the second without what a new pair would be called.
[[nodiscard]] Json as_json(const zvhost::CardList& list);
[[nodiscard]] Json contents_json(const zvhost::CardList& list);

// "2025-12-04T10:00:00Z"
[[nodiscard]] std::string instant(std::time_t time);

// A text, or null where it is empty.
[[nodiscard]] Json or_null(const std::string& text);

} // namespace words
