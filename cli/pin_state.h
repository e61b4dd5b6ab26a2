#pragma once

#include "pkcs11.h"

#include <string>

namespace cli {

// How it stands with a card's PIN, as the card says it; `low`: fewer tries are left than usual.
enum class PinState { no_warning, low, last_try, locked };

[[nodiscard]] PinState pin_state(CK_FLAGS token_flags);

// In a word for a program.
[[nodiscard]] const char* word_for(PinState state);

// For a person ("the PIN is locked"); empty when the card says nothing of its tries.
[[nodiscard]] std::string tries_text(PinState state);

} // namespace cli
