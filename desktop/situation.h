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

    // The reader that is looked at; null when there is none.
    [[nodiscard]] const zvhost::ReaderFacts* chosen() const;
    // Whether that card is in it, and can be read.
    [[nodiscard]] bool shows(const std::string& card_serial) const;
};

// Looks at it, in the reader of interest.
[[nodiscard]] Situation look_around(const zvhost::CardChoice& choice, const std::string& card_serial);

} // namespace desktop
