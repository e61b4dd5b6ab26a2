#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row CARD_ROWS[] = {
    {"card-mute", N_("a card that does not answer (is it the right way round?)")},
    {"card-series-refused", N_("Cards whose serial number begins with {series} are not supported.")},
    {"card-unknown", N_("a card of an unknown kind")},
    {"card-unusable", N_("The card in \"{reader}\" cannot be used: {problem}.")},
    {"insert-card", N_("Put the card in.")},
    {"insert-card-again", N_("Put the card in, or take it out and in again.")},
    {"key-untried", N_("the new key could not be tried. {reason}")},
    {"leave-card-and-repeat", N_("Leave the card in the reader and run the same command again.")},
    {"lock-gone",
     N_("Another program may be at work on this card by now: the file that keeps it away is gone.")},
    {"module-without-card", N_("The card's module shows no card in \"{reader}\".")},
    {"no-card", N_("There is no card in \"{reader}\".")},
    {"no-reader", N_("There is no card reader.")},
    {"no-temporary-files", N_("The library's temporary files cannot be made. {reason}")},
    {"plug-reader", N_("Plug the reader in and put the card in it.")},
    {"reader-inside-name", N_("The name of another reader that holds a card is part of \"{reader}\", so the "
                              "PIN would go to that card.")},
    {"reader-unknown", N_("There is no reader \"{reader}\"; there are: {readers}.")},
    {"reader-unreachable", N_("cannot be looked at{reason}")},
    {"reader-unusable", N_("The reader name \"{reader}\" cannot be used.")},
    {"reader-which", N_("Say which one with --reader NAME.")},
    {"reader-whole-name", N_("Give the name of one of these, whole.")},
    {"readers-alike", N_("Two readers that hold a card cannot be told apart by the first {characters} "
                         "characters of the name \"{reader}\", so the PIN could go to the other card.")},
    {"readers-several", N_("More than one reader holds a card: {readers}.")},
    {"readers-unlisted", N_("The readers cannot be listed{reason}.")},
    {"remove-other-card", N_("Take the other card out.")},
    {"run-again", N_("Run the command again.")},
    {"slot-too-high",
     N_("The card is in slot {slot} of its module; only slots 0 to {last} can be worked with.")},
    {"stored-already-unproved", N_("The certificate is on the card already, as {pair}, but {reason}")},
    {"stored-unproved", N_("The certificate was stored, but {reason}")},
    {"turn-card", N_("Take the card out and put it in the right way round.")},
};

} // namespace

Rows card_rows() {
    return CARD_ROWS;
}

} // namespace words
