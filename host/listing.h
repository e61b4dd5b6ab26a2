#pragma once

#include "host/card_list.h"
#include "host/card_status.h"
#include "host/inventory.h"

#include <vector>

namespace zvhost {

// What an inventory is today, without advice.
//
// @param days  a certificate is due when it ends within so many
[[nodiscard]] CardList list_of(const CardFacts& card, const Inventory& inventory, const CardView& view,
                               int days);

// How it stands with a card, by what a view without a login shows; without advice. @throws Error
[[nodiscard]] CardStatus status_of(const CardFacts& card, const CardView& view, int days);

// What can be done about what a card holds.
[[nodiscard]] std::vector<Advice> advice_on(const CardList& list);

} // namespace zvhost
