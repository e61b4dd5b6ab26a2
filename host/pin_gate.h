#pragma once

#include "host/card_facts.h"
#include "host/card_view.h"
#include "host/choice.h"
#include "host/error.h"
#include "host/lock.h"
#include "host/pin.h"
#include "host/place.h"

#include <memory>
#include <optional>

namespace zvhost {

// Asks a card for its state, without a login. @throws Error
[[nodiscard]] CardState card_state(const Module& module, const Place& place);
// What it answered.
[[nodiscard]] CardState card_state(CK_SLOT_ID slot, const CK_TOKEN_INFO& token);

// A card that was found, what it says of itself without a login, and its module, in which it was just seen.
struct FoundCard {
    Place place;
    CardState state;
    std::unique_ptr<Module> module;
};

// Finds the card, or waits for it where the choice wants that. What is known of it is told in `facts` as soon as it is.
// @throws Error
[[nodiscard]] FoundCard find_card(const CardChoice& choice, std::optional<CardFacts>& facts);

[[nodiscard]] CardFacts facts_of(const Place& place, std::optional<CardState> state);

// A card whose PIN was proved right, and all that working with it needs.
struct OpenedCard {
    Place place;
    CardState state;
    Pin pin;
    CardView view;            // what it held then
    std::optional<Lock> lock; // the card's, where it is going to be changed

    [[nodiscard]] CardFacts facts() const;
};

// Looks again, before the card is changed, whether no other program can be at work on it. @throws Error
void require_alone(const OpenedCard& card);

// What a card is opened for. Requests and installing work on slots 0 to 9 only.
enum class Use { reading, changing };

// Takes the way to a card on which no PIN try is lost: finds it, takes the PIN and checks its form, refuses a
// locked PIN, and a final try unless pin.final_try(); then tries the PIN once, and reads what the card holds in the same
// session.
//
// @throws Error; after a wrong PIN it says what the card now says of the tries.
[[nodiscard]] OpenedCard open_card(const CardChoice& choice, PinSource& source, Use use = Use::reading);

} // namespace zvhost
