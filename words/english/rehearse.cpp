#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row REHEARSE_ROWS[] = {
    {"file-unwritable", N_("{file} cannot be written.")},
    {"install-simcard", N_("Install the package zvsimcard; of a build, its component simcard: cmake "
                           "--install build --component simcard")},
    {"no-folder-made", N_("No folder can be made in {folder}.")},
    {"no-simulated-card", N_("A rehearsal takes the simulated card, and {file} is not there.")},
    {"no-twin-made", N_("No twin of the card can be made. {reason}")},
    {"not-rehearsed", N_("What only the card knows was not rehearsed: its PIN, objects that show with it "
                         "alone, and how its maker's module does things.")},
    {"object-data", N_("data")},
    {"object-until", N_("{what} until {ends}")},
    {"rehearse-with-force", N_("To rehearse it all the same, give --force.")},
    {"rehearsed-authority", N_("The authority (a simulated one) answers")},
    {"rehearsed-done", N_("done")},
    {"rehearsed-exit", N_("ends with exit code {code}")},
    {"rehearsed-not-due", N_("nothing is due")},
    {"rehearsed-nothing-due", N_("Nothing is due, so nothing was renewed.")},
    {"rehearsed-on-twin",
     N_("Rehearsed on a simulated twin of card {serial} (\"{label}\") in \"{reader}\". The card itself was "
        "only read, without the PIN.\n{room}\n\nOn the twin before:")},
    {"rehearsed-request-made", N_("the request is made")},
    {"twin-afterwards", N_("On the twin afterwards:")},
    {"twin-has-any-room",
     N_("The card does not say how much room it has: the twin has as much as it takes.")},
    {"twin-has-room", N_("The card says that {bytes} bytes are free: so many has the twin.")},
    {"twin-holds", N_("  {id}: {held}")},
    {"twin-unreadable", N_("The twin cannot be read. {reason}")},
    {"would-go-through", N_("The renewal would go through.")},
    {"would-not-go-through", N_("The renewal would not go through.")},
};

} // namespace

Rows rehearse_rows() {
    return REHEARSE_ROWS;
}

} // namespace words
