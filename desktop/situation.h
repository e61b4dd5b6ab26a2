#pragma once

#include "host/card_status.h"
#include "host/error.h"
#include "host/readers.h"

#include <optional>
#include <string>
#include <vector>

namespace desktop {

// What is there, without a PIN: readers, and the card in the one that was chosen.
struct Situation {
    std::vector<zvhost::ReaderFacts> readers;
    std::string reader; // the one that is looked at; empty: there is none
    std::optional<zvhost::CardStatus> status;
    std::optional<zvhost::Error> problem; // why nothing is known of the card
};

// Looks at it. The reader that was chosen stays as long as it is there; else one that holds a known card is taken.
[[nodiscard]] Situation look_around(const zvhost::CardChoice& choice);

} // namespace desktop
