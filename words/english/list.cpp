#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row LIST_ROWS[] = {
    {"ask-again", N_("  To ask once more:   zvrenew request {word} --out FILE   (the same pair is used)")},
    {"ask-again-services",
     N_("  To ask once more:   zvrenew request services --out FILE   (the same keys are used)")},
    {"certificates-hidden", N_("The card shows the keys {keys}, but no certificate without the PIN.")},
    {"certificates-unreadable",
     N_("The certificates on the card cannot be read: when they end is not known.")},
    {"due", N_("The {kind} certificate is due. Renew it:  zvrenew request {word} --out FILE")},
    {"due-early",
     N_("The {kind} certificate is due. Renew it:  zvrenew request {word} --out FILE --days {days}")},
    {"free-none", N_("none free")},
    {"free-of-pending", N_("{id} (taken by a pair that waits for its certificate)")},
    {"free-of-retired", N_("{id} (taken by keys that a removal left)")},
    {"free-unasked", N_("not looked for, since no signature identifier is free")},
    {"head-days", N_("DAYS")},
    {"head-ends", N_("ENDS")},
    {"head-holder", N_("HOLDER")},
    {"head-identifier", N_("IDENTIFIER")},
    {"head-kind", N_("KIND")},
    {"keys-left", N_("The keys {id} are what is left of a certificate that was removed (a copy: {backup}); "
                     "nothing uses them.\n  They can go:   zvrenew remove {id}")},
    {"list-card", N_("Card {serial} (\"{label}\") in {reader}")},
    {"list-card-unknown", N_("Card in {reader}")},
    {"list-empty", N_("  (no certificates)")},
    {"list-uncertified", N_("  (keys that show no certificate: {keys})")},
    {"list-unreadable", N_("  ({count} more cannot be read)")},
    {"mark-due", N_("DUE")},
    {"mark-due-under-way", N_("DUE, request under way")},
    {"mark-expired", N_("EXPIRED, due")},
    {"mark-expired-under-way", N_("EXPIRED, due, request under way")},
    {"mark-replaced", N_("replaced")},
    {"mark-under-way", N_("request under way")},
    {"more-with-pin", N_("What the card does not show without the PIN, see with:  zvrenew list")},
    {"pair-waits", N_("The new {kind} pair {pair} waits for its certificate.\n  When it has come:   zvrenew "
                      "install CERTIFICATE")},
    {"services-request-hidden", N_("Whether a request for the card's own certificate is under way does not "
                                   "show without the PIN. See it with:  zvrenew list")},
    {"services-under-way", N_("A request for the services certificate is under way.\n  When it has come:   "
                              "zvrenew install CERTIFICATE")},
    {"services-under-way-stored", N_("A request for the services certificate is under way.\n  When it has "
                                     "come:   zvrenew install CERTIFICATE --remove-old")},
};

} // namespace

Rows list_rows() {
    return LIST_ROWS;
}

} // namespace words
