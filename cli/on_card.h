#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace cli {

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
    std::string problem;    // why the card could not be read; empty when it was
    bool untouched = false; // nobody looked: the command ended before it did anything to the card

    // "DS0 (certificate and keys), DS3 (keys without a certificate)"
    [[nodiscard]] std::string in_words() const;
};

} // namespace cli
