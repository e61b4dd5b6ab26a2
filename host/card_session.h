#pragma once

#include "host/pin_gate.h"

#include <functional>
#include <optional>
#include <string>

namespace zvhost {

// Refuses another card than the one that was found: a PIN is for the card that it was proved with, and an answer is
// about one card. @throws Error
void require_same_card(const Module& module, const CardState& state);
// The same, of a card that is looked at for nothing else. @throws Error
void require_same_card(const OpenedCard& card);

// Opens a session of its own on the card, logs in, runs `work` and ends the session. @throws Error
void with_session(OpenedCard& card, const std::function<void(Session&)>& work);

// The same, in a session that may change the card. @throws Error
void with_writing_session(OpenedCard& card, const std::function<void(Session&)>& work);

// What is on the card once it may have been changed.
struct CardNow {
    std::optional<CardView> view; // none when the card cannot be read
    OnCard contents;              // of the view, or why there is none

    [[nodiscard]] bool is_pending(const std::string& pair) const;
};

// Looks at it once more.
[[nodiscard]] CardNow card_now(OpenedCard& card);
// Takes a look at it that was made for something else, too.
[[nodiscard]] CardNow card_now(const OpenedCard& card, CardView view);

} // namespace zvhost
