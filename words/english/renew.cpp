#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row RENEW_ROWS[] = {
    {"another-card", N_("Another card is in the reader.")},
    {"authority-failed", N_("The authority's command gave no certificate (it ended with {code}): {command}")},
    {"authority-failed-advice",
     N_("The request is kept. When the command works again, run the same command once more.")},
    {"authority-unasked", N_("The authority's command could not be run ({reason}): {command}")},
    {"insert-same-card", N_("Put the card back that the command began with.")},
    {"renewal-again", N_("To go on, run the same command again.")},
    {"renewal-answer-kept",
     N_("The authority's answer is in {file}. To have another one taken, move it away and run "
        "the same command again.")},
    {"renewal-asks-authority", N_("Then the request is handed to the authority; its certificate is installed "
                                  "when it has come.")},
    {"renewal-backup", N_("A copy of the old certificate: {backup}")},
    {"renewal-compared", N_("The key {pair} wants a PIN before each signature: it was compared with the new "
                            "certificate instead of signing.")},
    {"renewal-done", N_("The new {kind} certificate is on the card, with its keys, as {pair}.")},
    {"renewal-kept", N_("The certificate {id} is still on the card. When it is no longer needed:  zvrenew "
                        "remove {id}")},
    {"renewal-little-room",
     N_("The card says that it has no room for both certificates: it may refuse the new one.")},
    {"renewal-needs-remove-old", N_("The card has no room for both certificates, and the old one makes room: "
                                    "run the same command again with --remove-old.")},
    {"renewal-new-pair",
     N_("Run the same command again. If it fails in the same way, give the pair up first:  "
        "zvrenew pending discard {pair}")},
    {"renewal-no-room", N_("If the card is full, the old certificate makes room when it goes first:  zvrenew "
                           "install {file} --remove-old")},
    {"renewal-now", N_("Now on the card: {now}")},
    {"renewal-proved", N_("Signed with {pair} and verified with the new certificate.")},
    {"renewal-removed", N_("Removed: {old}.")},
    {"renewal-removes-later",
     N_("Once the new certificate is proved, the old one and its keys are removed.")},
    {"renewal-stopped", N_("Stopped, as asked for, between two steps.")},
    {"renewal-under-way",
     N_("The request for the {kind} certificate waits for the authority: {file}\nThe pair "
        "{pair} waits on the card. When the certificate has come, run the same command "
        "again.\nNow on the card: {now}")},
    {"renewal-waits", N_("The pair {pair} waits for the certificate that answers {file}.")},
    {"renewal-without-authority", N_("Nothing says where the authority's certificate comes from.")},
    {"renewal-without-authority-advice",
     N_("Give --from FILE, into which you put the certificate when it has come, or --ca-command COMMAND.")},
    {"step-keys", N_("The card makes the keys {pair}")},
    {"step-prove", N_("Trying the key {pair} with its certificate")},
    {"step-remove", N_("Removing {id}")},
    {"step-request", N_("Making the request for {pair}")},
    {"step-store", N_("Storing the certificate {pair}")},
    {"step-unmark", N_("Removing the mark of the request")},
    {"stored-back", N_("The new certificate could not be stored: the old one, {id}, is back on the card.")},
};

} // namespace

Rows renew_rows() {
    return RENEW_ROWS;
}

} // namespace words
