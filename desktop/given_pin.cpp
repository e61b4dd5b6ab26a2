#include "desktop/given_pin.h"

#include "host/error.h"

#include <utility>

namespace desktop {

GivenPin::GivenPin(zvhost::Pin pin, std::string card, bool final_try)
    : pin_(std::move(pin)), card_(std::move(card)), final_try_(final_try) {}

zvhost::Pin GivenPin::ask(const zvhost::CardFacts& card) {
    if (!card.state || card.state->serial != card_)
        throw zvhost::Error(zvhost::Exit::refused, {"pin-other-card", {}});
    return pin_.copy();
}

} // namespace desktop
