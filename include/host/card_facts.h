#pragma once

#include "host/pin_state.h"

#include <cstddef>
#include <optional>
#include <string>

namespace zvhost {

// What a card says of itself, without a login.
struct CardState {
    CK_SLOT_ID slot = 0;
    std::string label;
    std::string serial;
    std::optional<std::size_t> room; // bytes free for public objects; none when the card does not say
    std::optional<PinState> pin;     // none when the card could not be asked
    bool keypad = false;             // the module says that PINs can be typed at the reader
};

// Which card an answer is about, as far as it is known.
struct CardFacts {
    std::string reader;
    std::string module; // path of the card's module; empty when it is not known
    bool services_card = false;
    std::optional<CardState> state;
};

} // namespace zvhost
