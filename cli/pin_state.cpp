#include "cli/pin_state.h"

namespace cli {

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

std::string tries_text(PinState state) {
    switch (state) {
    case PinState::no_warning:
        return {};
    case PinState::low:
        return "fewer tries are left than usual";
    case PinState::last_try:
        return "one try is left, then the PIN is locked";
    case PinState::locked:
        return "the PIN is locked";
    }
    return {};
}

} // namespace cli
