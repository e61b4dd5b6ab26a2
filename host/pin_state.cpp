#include "host/pin_state.h"

namespace zvhost {

PinState pin_state(CK_FLAGS token_flags) {
    if ((token_flags & CKF_USER_PIN_LOCKED) != 0) return PinState::locked;
    if ((token_flags & CKF_USER_PIN_FINAL_TRY) != 0) return PinState::last_try;
    return (token_flags & CKF_USER_PIN_COUNT_LOW) != 0 ? PinState::low : PinState::no_warning;
}

const char* word_for(PinState state) {
    switch (state) {
    case PinState::no_warning:
        return "no warning";
    case PinState::low:
        return "low";
    case PinState::last_try:
        return "last try";
    case PinState::locked:
        return "locked";
    }
    return "";
}

Sentence tries_told(PinState state) {
    switch (state) {
    case PinState::no_warning:
        return {};
    case PinState::low:
        return Sentence{"pin-low", {}};
    case PinState::last_try:
        return Sentence{"pin-last-try", {}};
    case PinState::locked:
        return Sentence{"pin-locked", {}};
    }
    return {};
}

} // namespace zvhost
