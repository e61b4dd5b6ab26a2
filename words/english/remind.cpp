#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row REMIND_ROWS[] = {
    {"desktop-untold", N_("The desktop cannot show a reminder ({reason}).")},
    {"enable-or-disable", N_("--enable and --disable are opposites.")},
    {"journal-newer", N_("This computer's journal of cards, {folder}, is left as it is: a later version of "
                         "zvrenew wrote it.")},
    {"journal-unwritten", N_("This computer's journal of cards, {folder}, cannot be written ({reason}).")},
    {"list-services-by-journal",
     N_("  (by this computer's journal a request for the card's own certificate is under way)")},
    {"no-home", N_("This user has no home folder.")},
    {"nothing-to-remind-of", N_("There is nothing to remind of.")},
    {"reminder-ended",
     N_("The {kind} certificate {id} on the card {card}, seen last on {seen}, ended on {end}. It can no "
        "longer sign the "
        "request for its successor: ask the authority that issued it how to get a new one.")},
    {"reminder-ended-title", N_("A certificate on your card has ended")},
    {"reminder-ended-under-way",
     N_("The {kind} certificate {id} on the card {card}, seen last on {seen}, ended on {end}. A request for "
        "its successor "
        "is under way: when the authority's certificate comes, store it with:  zvrenew install CERTIFICATE")},
    {"reminder-ends", N_("The {kind} certificate {id} on the card {card}, seen last on {seen}, ends on "
                         "{end}. An expired certificate cannot "
                         "sign the request for its successor: renew it before that. Put the card in the "
                         "reader and run:  zvrenew renew "
                         "{argument} --from CERTIFICATE")},
    {"reminder-ends-title", N_("A certificate on your card ends on {end}")},
    {"reminder-ends-under-way",
     N_("The {kind} certificate {id} on the card {card}, seen last on {seen}, ends on {end}. A request for "
        "its successor is "
        "under way: when the authority's certificate comes, store it with:  zvrenew install CERTIFICATE")},
    {"reminder-open", N_("Open")},
    {"reminders-by-autostart",
     N_("Reminders are on: at each start of the desktop zvrenew looks for what ends ({file}).")},
    {"reminders-by-systemd",
     N_("Reminders are on: each day zvrenew looks for what ends ({timer} of the user's systemd).")},
    {"reminders-entry-left", N_("Reminders are still on: {file} cannot be removed ({reason}).")},
    {"reminders-not-on", N_("Reminders cannot be turned on: {from} cannot be copied to {file} ({reason}).")},
    {"reminders-off", N_("Reminders are off.")},
    {"reminders-timer-left", N_("Reminders are still on: the user's systemd does not turn {timer} off.")},
    {"see-status", N_("See how it stands with a card:  zvrenew status")},
    {"services-request-by-journal",
     N_("That a request for the card's own certificate is under way is by this computer's journal. What the "
        "card says, see with:  zvrenew list")},
    {"show-card-first",
     N_("No card has been seen on this computer yet. Put yours in the reader and run:  zvrenew status")},
};

} // namespace

Rows remind_rows() {
    return REMIND_ROWS;
}

} // namespace words
