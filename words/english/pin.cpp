#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row PIN_ROWS[] = {
    {"check-pin", N_("Make sure of the PIN before the next try.")},
    {"final-try", N_("If you are sure of the PIN, give --final-try.")},
    {"no-terminal", N_("There is no terminal to ask for the PIN on.")},
    {"pin-blank", N_("The PIN ends with a blank, which would not reach the card.")},
    {"pin-card-says", N_("The card says that {tries}.")},
    {"pin-control", N_("The PIN has a control character in it (a tab, a line end).")},
    {"pin-empty", N_("The PIN is empty: the card would count that as a wrong one.")},
    {"pin-file", N_("Give --pin-file FILE, --pin-fd N or --pinentry.")},
    {"pin-file-open", N_("Warning: others can read the PIN file {file} (chmod 600 it).")},
    {"pin-file-unread", N_("The PIN file {file} cannot be read ({reason}).")},
    {"pin-final-try", N_("Only one PIN try is left: a wrong PIN now locks the card.")},
    {"pin-last-try", N_("one try is left, then the PIN is locked")},
    {"pin-locked", N_("the PIN is locked")},
    {"pin-locked-already", N_("The card's PIN is locked.")},
    {"pin-long", N_("The PIN has more than {most} characters.")},
    {"pin-low", N_("fewer tries are left than usual")},
    {"pin-other-card", N_("Another card is in the reader than when the PIN was asked for.")},
    {"pin-prompt", N_("PIN of the card in \"{reader}\": ")},
    {"pin-descriptor-unread", N_("The PIN cannot be read from the descriptor {descriptor} ({reason}).")},
    {"pin-keypad", N_("The reader has a keypad, but the PIN is sent to the card as a text: give it here, not "
                      "on the keypad.")},
    {"pin-lost", N_("The PIN could not be asked for ({reason}).")},
    {"pin-nobody", N_("Nobody gave the PIN.")},
    {"pin-of-card", N_("PIN of the card {serial} (\"{label}\") in \"{reader}\".")},
    {"pin-program-ended",
     N_("The PIN could not be asked for: the program {program} ended without an answer.")},
    {"pin-program-nonsense",
     N_("The PIN could not be asked for: what the program {program} answers makes no sense.")},
    {"pin-program-silent", N_("The PIN could not be asked for: the program {program} gives no answer.")},
    {"pin-program-unstarted",
     N_("The PIN could not be asked for: the program {program} cannot be started ({reason}).")},
    {"pin-refused-before", N_("The card has refused the PIN, which is not sent to it again.")},
    {"pin-several-sources",
     N_("The PIN comes from one place: give one of --pin-file, --pin-fd and --pinentry.")},
    {"pin-stopped", N_("Stopped at the PIN.")},
    {"pin-tries-not-asked", N_("the card could not be asked how many tries are left")},
    {"pin-tries-untold", N_("the card does not say how many tries are left")},
    {"pin-unchecked", N_("The PIN could not be checked{reason}.")},
    {"pin-wrong", N_("The PIN is wrong{reason}; {tries}.")},
    {"terminal-echo", N_("The terminal's echo cannot be switched off.")},
    {"terminal-unread", N_("The terminal cannot be read.")},
    {"unlock", N_("It takes the card's PUK to unlock the PIN.")},
    {"unlock-first", N_("Unlock it with the card's PUK first.")},
};

} // namespace

Rows pin_rows() {
    return PIN_ROWS;
}

} // namespace words
