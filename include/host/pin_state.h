#pragma once

#include "host/sentence.h"
#include "pkcs11.h"

namespace zvhost {

// How it stands with a card's PIN, as the card says it; `low`: fewer tries are left than usual.
enum class PinState { no_warning, low, last_try, locked };

[[nodiscard]] PinState pin_state(CK_FLAGS token_flags);

// In a word for a program.
[[nodiscard]] const char* word_for(PinState state);

// What the card says of its tries; empty when it says nothing.
[[nodiscard]] Sentence tries_told(PinState state);

} // namespace zvhost
