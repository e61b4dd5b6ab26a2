#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row PIN_ROWS[] = {
    {"pin-last-try", N_("one try is left, then the PIN is locked")},
    {"pin-locked", N_("the PIN is locked")},
    {"pin-low", N_("fewer tries are left than usual")},
    {"pin-tries-not-asked", N_("the card could not be asked how many tries are left")},
    {"pin-tries-untold", N_("the card does not say how many tries are left")},
    {"pin-wrong", N_("The PIN is wrong{reason}; {tries}.")},
};

} // namespace

Rows pin_rows() {
    return PIN_ROWS;
}

} // namespace words
