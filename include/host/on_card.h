#pragma once

#include "host/sentence.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zvhost {

// What a card holds under one identifier.
struct Held {
    std::string id;
    std::size_t certificates = 0;
    bool public_key = false;
    bool private_key = false;
};

// What is on a card, as read at one moment.
struct OnCard {
    std::vector<Held> held;
    Sentence problem;       // why the card could not be read; empty when it was
    bool untouched = false; // nobody looked: the command ended before it did anything to the card
};

} // namespace zvhost
