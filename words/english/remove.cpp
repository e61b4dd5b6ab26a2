#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row REMOVE_ROWS[] = {
    {"discard-of-certified", N_("The pair {id} has a certificate: it does not wait for one.")},
    {"discard-of-certified-advice", N_("To remove it with its certificate:  zvrenew remove {id}")},
    {"discard-of-no-waiting", N_("The keys {id} do not wait for a certificate.")},
    {"none-pending", N_("No pair on the card waits for a certificate, and no request is under way.")},
    {"pending-discard",
     N_("  To give it up:   zvrenew pending discard {pair}   (no certificate can be installed for it then)")},
    {"pending-heading", N_("What waits for a certificate:")},
    {"removal-not-as-planned",
     N_("Under {id} the card holds something else than before: nothing was removed.")},
    {"removal-not-whole", N_("{id} could not be removed whole.")},
    {"removal-of-last", N_("{id} is the {kind} certificate of the card that ends last.")},
    {"removal-of-last-advice",
     N_("Nothing puts it back, and without it no successor can be requested. To remove it all the same, "
        "give --last.")},
    {"removal-of-nothing", N_("There is no {id} on the card.")},
    {"removal-of-own-pair", N_("{id} is a services card's own pair and stays.")},
    {"removal-of-strangers", N_("Under {id} the card holds what does not belong together: which of it goes "
                                "would be chance.")},
    {"removal-of-waiting", N_("The pair {id} waits for its certificate.")},
    {"removal-of-waiting-advice", N_("To give it up:  zvrenew pending discard {id}")},
    {"removal-unsaved", N_("What is public of {id} cannot be saved, so nothing is removed.")},
    {"removed", N_("Removed: {id}.\nA copy of what is public of it: {backup}\nNow on the card: {now}")},
    {"see-list", N_("See what there is with: zvrenew list")},
    {"why-removal-wanted", N_("it is to go")},
};

} // namespace

Rows remove_rows() {
    return REMOVE_ROWS;
}

} // namespace words
