#pragma once

#include "cli/engine.h"
#include "host/card_facts.h"
#include "host/sentence.h"

#include <vector>

namespace cli {

// What a person should know before the PIN of a card is given: how many tries are left, and that a reader's keypad is of no
// use.
[[nodiscard]] std::vector<Sentence> about_pin(const CardFacts& card);

} // namespace cli
