#include "host/kept_pin.h"

#include "host/error.h"

namespace zvhost {

std::optional<Pin> KeptPin::at_once() {
    if (pin_) return std::nullopt; // the card is looked at first
    std::optional<Pin> pin = source_.at_once();
    if (pin) pin_ = pin->copy();
    return pin;
}

Pin KeptPin::ask(const CardFacts& card) {
    if (!pin_) pin_ = source_.ask(card);
    if (serial_ && (!card.state || card.state->serial != *serial_))
        throw Error(Exit::refused, {"another-card", {}}, Advice{"insert-card", {"insert-same-card", {}}});
    return pin_->copy();
}

} // namespace zvhost
