#pragma once

#include "cli/card_list.h"
#include "cli/outcome.h"

#include <string>
#include <vector>

namespace cli {

// How it stands with a card, by what it shows without a PIN.
struct CardStatus {
    CardList list;
    std::vector<std::string> uncertified; // a card's first keys whose certificate does not show
    Exit exit = Exit::done;
};

// @param days  a certificate is due when it ends within so many
// @throws Stop when the card shows that there is something, but nothing that ends
[[nodiscard]] CardStatus status_of(const CardFacts& card, const CardView& view, int days);

[[nodiscard]] std::string in_words(const CardStatus& status);
[[nodiscard]] Json as_json(const CardStatus& status);
[[nodiscard]] std::vector<Advice> advice_on(const CardStatus& status);

} // namespace cli
