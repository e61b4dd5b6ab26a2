#include "cli/pin_question.h"

namespace cli {

std::vector<Sentence> about_pin(const CardFacts& card) {
    std::vector<Sentence> told;
    if (!card.state) return told;
    if (const Sentence tries = card.state->pin ? tries_told(*card.state->pin) : Sentence(); !tries.empty())
        told.push_back(Sentence("pin-card-says", {{"tries", std::vector{tries}}}));
    if (card.state->keypad) told.push_back(Sentence("pin-keypad", {}));
    return told;
}

} // namespace cli
