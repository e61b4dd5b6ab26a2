#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row CARD_ROWS[] = {
    {"card-mute", N_("a card that does not answer (is it the right way round?)")},
    {"card-unknown", N_("a card of an unknown kind")},
    {"card-unusable", N_("The card in \"{reader}\" cannot be used: {problem}.")},
    {"key-untried", N_("the new key could not be tried. {reason}")},
    {"no-temporary-files", N_("The library's temporary files cannot be made. {reason}")},
    {"reader-unreachable", N_("cannot be looked at{reason}")},
    {"stored-already-unproved", N_("The certificate is on the card already, as {pair}, but {reason}")},
    {"stored-unproved", N_("The certificate was stored, but {reason}")},
};

} // namespace

Rows card_rows() {
    return CARD_ROWS;
}

} // namespace words
