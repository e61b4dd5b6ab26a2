#pragma once

#include "host/card_list.h"
#include "host/inventory.h"
#include "host/journal.h"

#include <string>
#include <vector>

namespace zvhost {

// What this computer's journal takes from the looks at a card.

// What a reading with the PIN found.
void remember_all(const CardFacts& card, const Inventory& inventory, const CardView& view);

// What is on the card once it may have been changed, as it was read with the PIN.
void remember_view(const CardFacts& card, const CardView& view);

// What a reading without the PIN found. Of what may be there and does not show, what was remembered stays: certificates of
// `hidden` identifiers, a services card's renewal, and its request while the own certificate is still the same.
// @return what is remembered now
RememberedCard remember_shown(const CardList& list, const std::vector<std::string>& hidden);

// Whether a certificate under the renewal's identifier is the one that it waits for: a services card has its old one and its
// new one under the same.
[[nodiscard]] bool is_new_one(const RememberedRenewal& renewal, const std::string& serial);

// That a request was made for a renewal.
void remember_request(const CardFacts& card, const RememberedRenewal& renewal);

} // namespace zvhost
