#pragma once

#include "host/error.h"
#include "host/kind.h"

#include <string>
#include <vector>

namespace zvhost {

// Advice that more than one command gives.

// The identifiers that new keys of a kind can get.
[[nodiscard]] std::vector<std::string> identifiers_of(Kind kind);

// The same, for a sentence that names them: "{kind}", "{first}" and "{last}".
[[nodiscard]] Values series_of(Kind kind);

// What to do when none of them is free.
[[nodiscard]] Advice free_an_identifier(Kind kind);

// What to do about a card that has no room for more.
[[nodiscard]] Advice make_room();

// What to do about a pair that wants the PIN before each signature.
[[nodiscard]] Advice leave_to_card_software(const std::string& pair);

// What to do about a key that wants a PIN before each signature and did not get one that it takes.
[[nodiscard]] Advice give_key_the_pin(const std::string& key);

// What to do about a card of an unknown kind.
[[nodiscard]] Advice enter_card();

// What to do without a service for card readers.
[[nodiscard]] Advice start_service();

} // namespace zvhost
