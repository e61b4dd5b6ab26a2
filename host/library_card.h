#pragma once

#include "host/pin_gate.h"

namespace zvhost {

// Has the library find the card, as its requests and its installing want it; no PIN is sent for that. What the library
// does next gets the PIN, so another card is refused. @throws Error
void show_card_to_library(const OpenedCard& card);

} // namespace zvhost
