#pragma once

#include "cli/lock.h"
#include "cli/module.h"
#include "cli/options.h"
#include "cli/outcome.h"
#include "cli/pin.h"
#include "cli/place.h"

#include <optional>
#include <string>

namespace cli {

// What a card says of itself and of its PIN.
struct CardState {
    CK_SLOT_ID slot = 0;
    std::string label;
    std::string serial;
    CK_FLAGS flags = 0;
};

// Asks a card for its state, without a login. @throws Stop
[[nodiscard]] CardState card_state(const Place& place);

// {"reader", "module", "services_card"} and {"label", "serial", "pin"}: what an answer says of a card.
[[nodiscard]] Json place_json(const Place& place);
[[nodiscard]] Json state_json(const CardState& state);

// How it stands with the PIN, in a word for a program: "locked", "last try", "low" (fewer tries than usual);
// "no warning" when the card says nothing of them.
[[nodiscard]] const char* pin_state(CK_FLAGS flags);

// Says how it stands with the PIN's tries ("the PIN is locked"); empty when the card says nothing of them.
[[nodiscard]] std::string tries_text(CK_FLAGS flags);

// A card whose PIN was proved right, and all that working with it needs.
struct OpenedCard {
    Place place;
    CardState state;
    Pin pin;
    std::optional<Lock> lock; // the card's, where it is going to be changed
};

// Looks again, before the card is changed, whether no other program can be at work on it. @throws Stop
void require_alone(const OpenedCard& card);

// What a card is opened for. Requests and storing work on slots 0 to 9 only.
enum class Use { reading, changing };

// Takes the way to a card on which no PIN try is lost: finds it, takes the PIN and checks its form, refuses a
// locked PIN, and a final try unless options.final_try; then tries the PIN once.
//
// @throws Stop; after a wrong PIN it says what the card now says of the tries.
[[nodiscard]] OpenedCard open_card(const CommonOptions& options, Use use = Use::reading);

} // namespace cli
