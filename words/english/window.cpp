#include "words/english/rows.h"

namespace words {
namespace {

// What is told otherwise in a window, where there are no commands and options.
constexpr Row WINDOW_ROWS[] = {
    {"accept-anyway@window", N_("Ask the authority whether this is the certificate that it means you to "
                                "have. To install it all the same, choose \"Install it all the same\".")},
    {"all-have-one-identifier@window",
     N_("All have the identifier {id}: leave \"Remove the old certificate\" off, or first "
        "remove the ones that are no longer needed with the card's own software.")},
    {"ask-again@window", N_("The request can be made once more; the same pair is used.")},
    {"ask-again-services@window", N_("The request can be made once more; the same keys are used.")},
    {"card-full@window",
     N_("The card is full. Remove a certificate that is no longer needed, with its keys; then try again.")},
    {"card-unread@window", N_("not known, since the card cannot be read. {reason}")},
    {"discard-of-certified-advice@window", N_("It can only be removed with its certificate.")},
    {"doctor-close-program@window", N_("Close {program}.")},
    {"doctor-complete-module@window", N_("Install the card's software again, with all that it needs.")},
    {"doctor-end-scdaemon@window", N_("Close the programs that encrypt or sign with GnuPG, or log out and in "
                                      "again: then it lets the card go.")},
    {"doctor-final-try@window", N_("If you are sure of the PIN, choose \"I am sure of the PIN: if it is "
                                   "wrong, the card locks\"; the right PIN gives the tries back.")},
    {"doctor-front@window", N_("{module} is started once a step, through {front}.")},
    {"doctor-have-removed@window", N_("Have {owner} or an administrator remove it.")},
    {"doctor-make-room@window", N_("Remove a certificate that is no longer needed, with its keys.")},
    {"doctor-mend-configuration@window",
     N_("Have an administrator mend {file}, at the line that is named if one is.")},
    {"doctor-module-where-told@window", N_("{module} is in {folder}, where it was told to be.")},
    {"doctor-open-folder@window", N_("Ask an administrator to let everyone write in {folder}.")},
    {"doctor-open-log-folder@window", N_("Give yourself the right to write in {folder}.")},
    {"doctor-remove-own@window", N_("Remove it.")},
    {"doctor-set-clock@window", N_("Set this computer's clock.")},
    {"doctor-wait@window", N_("Try again when that one has ended.")},
    {"due@window", N_("The {kind} certificate is due. Choose \"Renew the {kind} certificate\".")},
    {"due-early@window", N_("The {kind} certificate is due. Choose \"Renew the {kind} certificate\".")},
    {"enter-card@window",
     N_("This program does not know cards of this kind. Whoever looks after this computer can add it: its "
        "ATR has to stand in {folder}/zvcrypt.conf with the file name of its maker's PKCS#11 module.")},
    {"file-other-name@window", N_("Choose another name, or move that file away.")},
    {"final-try@window",
     N_("If you are sure of the PIN, choose \"I am sure of the PIN: if it is wrong, the card locks\".")},
    {"free-identifier@window", N_("New {kind} keys go under {first} or {last}, and none is free. Remove the "
                                  "certificate among them that is no longer needed, with its keys.")},
    {"give-force@window",
     N_("It is due {days} days before. To renew it now, choose \"Renew it all the same\".")},
    {"give-subject@window", N_("The authority has to say which subject the request is to have.")},
    {"give-whole-identifier@window", N_("Choose one of the certificates that are on the card.")},
    {"help-desk-masked@window",
     N_("For a help desk, from the window of zvRenew. This is plain text: read it before you send it. Names, "
        "tax codes, the\nuser's name and folder were taken out; a PIN is never in it.")},
    {"help-desk-with-names@window",
     N_("For a help desk, from the window of zvRenew. This is plain text: read it before you send it. Names "
        "and tax\ncodes are in it; a PIN never is.")},
    {"insert-same-card@window", N_("Put the card back that was in the reader before.")},
    {"install-without-remove-old@window", N_("Leave \"Remove the old certificate\" off.")},
    {"journal-newer@window", N_("This computer's journal of cards, {folder}, is left as it is: a later "
                                "version of this program wrote it.")},
    {"key-wants-own-pin@window",
     N_("Do not try again as it is: the key {key} wants a PIN before each signature, has the card's alone "
        "been offered, and may count a try each time. If that key has a PIN of its own, make it the card's "
        "with the card's own software, then try again; if the card does not allow that, ask its issuer.")},
    {"keys-doubled-advice@window", N_("With the card's own software, remove the keys {id} that no "
                                      "certificate is wanted for; then try again.")},
    {"keys-left@window", N_("The keys {id} are what is left of a certificate that was removed (a copy: "
                            "{backup}); nothing uses them. They can go.")},
    {"leave-card-and-repeat@window", N_("Leave the card in the reader and try again.")},
    {"left-of-removed@window", N_("Left on the card of a certificate removed before: {left}. Nothing uses "
                                  "it; the card's own software can remove it.")},
    {"make-room-first@window",
     N_("If the card is full, first remove a certificate that is no longer needed.")},
    {"module-install@window", N_("Install the card maker's software.")},
    {"more-with-pin@window", N_("Some of what is on the card shows only with the PIN.")},
    {"old-makes-room@window", N_("If the card is full, the old certificate {id} makes room: choose \"Remove "
                                 "the old certificate\".")},
    {"old-same-identifier@window",
     N_("The old certificate is still on the card, under the same identifier {id}: programs may take it for "
        "the new\none. Only the card's own software can remove it now.")},
    {"one-certificate-only@window",
     N_("A card that takes one certificate of an identifier only needs the old one removed: choose \"Remove "
        "the old certificate\".")},
    {"or-replace-this@window", N_("or {id}")},
    {"other-backup-file@window", N_("Choose another name for the backup.")},
    {"own-keys-of-no-use@window",
     N_("Try again with the card in the reader. If that fails in the same way, the card's own keys are of no "
        "use for a request: its issuer has to help.")},
    {"pair-waits@window", N_("The new {kind} pair {pair} waits for its certificate. When that has come, "
                             "choose \"The {kind} certificate has come\".")},
    {"pending-discard@window", N_("No certificate can be installed for {pair} once it is given up.")},
    {"pin-keypad@window", N_("The reader has a keypad, but the PIN is sent to the card as a text: type it "
                             "here, not on the keypad.")},
    {"pin-wrong@window", N_("The PIN is wrong; {tries}.")},
    {"plan-again@window", N_("Look at the plan once more.")},
    {"quoted-file@window", N_("The quoted text names molvastra.ini, a file that this program does not have: "
                              "see instead what the reader and the card say.")},
    {"quoted-with-meaning@window", N_("{meaning}")},
    {"reader-which@window", N_("Choose one of them.")},
    {"reader-whole-name@window", N_("Choose one of these.")},
    {"reminder-ended-under-way@window",
     N_("The {kind} certificate {id} on the card {card}, seen last on {seen}, ended on {end}. A request for "
        "its successor is under way: when the authority's certificate comes, open \"Certificates on smart "
        "cards\" and choose \"The {kind} certificate has come\".")},
    {"reminder-ends@window",
     N_("The {kind} certificate {id} on the card {card}, seen last on {seen}, ends on {end}. An expired "
        "certificate cannot sign the request for its successor: renew it before that. Put the card in the "
        "reader, open \"Certificates on smart cards\" and choose \"Renew the {kind} certificate\".")},
    {"reminder-ends-under-way@window",
     N_("The {kind} certificate {id} on the card {card}, seen last on {seen}, ends on {end}. A request for "
        "its successor is under way: when the authority's certificate comes, open \"Certificates on smart "
        "cards\" and choose \"The {kind} certificate has come\".")},
    {"reminders-by-autostart@window",
     N_("Reminders are on: at each start of the desktop this computer looks for what ends ({file}).")},
    {"reminders-by-systemd@window",
     N_("Reminders are on: each day this computer looks for what ends ({timer} of the user's systemd).")},
    {"removal-of-last-advice@window",
     N_("Nothing puts it back, and without it no successor can be requested.")},
    {"removal-of-waiting-advice@window",
     N_("It can be given up; no certificate can be installed for it then.")},
    {"renewal-again@window", N_("To go on, try again.")},
    {"renewal-answer-kept@window",
     N_("The authority's answer is in {file}. To take another one, choose \"Choose another certificate\".")},
    {"renewal-done@window", N_("The new {kind} certificate is on the card, with its keys.")},
    {"renewal-kept@window",
     N_("The certificate {id} is still on the card. It can be removed when it is no longer needed.")},
    {"renewal-needs-remove-old@window",
     N_("The card has no room for both certificates, and the old one makes room: choose \"Remove the old "
        "certificate\".")},
    {"renewal-new-pair@window",
     N_("Try again. If it fails in the same way, choose \"Make new keys\", which discards the pair {pair}.")},
    {"renewal-no-room@window",
     N_("If the card is full, the old certificate makes room when it goes first: choose \"Remove the old "
        "certificate\". The authority's certificate is kept as {file}.")},
    {"renewal-removed@window", N_("The old certificate was removed.")},
    {"repeat-discarding@window", N_("The pair {pair} is not discarded yet: try again.")},
    {"repeat-keys-unchanged@window", N_("The keys {pair} are as they were: try again.")},
    {"repeat-or-other-certificate@window",
     N_("Leave the card in the reader and try again, or choose another certificate.")},
    {"repeat-pair-waits@window", N_("The pair {pair} still waits for the certificate: try again.")},
    {"repeat-request@window", N_("Put the card in the reader and try again.")},
    {"repeat-to-try-key@window", N_("Try the new key once more.")},
    {"repeat-with-card@window", N_("Put the card in the reader and try again.")},
    {"repeat-with-pair@window", N_("Try again: it will use the pair {pair} that is on the card.")},
    {"repeat-without-new-pair@window", N_("Make the request with the pair {pair}, without new keys.")},
    {"replace-new-pair@window",
     N_("The card made no request of the pair {pair}. Choose \"Make new keys\", which discards {pair}.")},
    {"replace-this@window", N_("{id}")},
    {"replace-waiting-pair@window",
     N_("The card made no request of the pair {pair}. Choose \"Make new keys\", which discards {pair} (a "
        "certificate for it can then no longer be installed).")},
    {"request-without-new-pair@window", N_("Make the request without new keys.")},
    {"run-again@window", N_("Try again.")},
    {"run-when-ended@window", N_("Try again when that one has ended.")},
    {"say-which@window", N_("Choose which one: {choices}.")},
    {"see-card@window", N_("Look at what is on the card.")},
    {"see-list@window", N_("Look at what is on the card.")},
    {"see-status@window", N_("Put a card in to see how it stands.")},
    {"send-request@window", N_("Send it to the authority. When the authority's certificate has come, drop "
                               "its file on this window, choose it, or paste it.")},
    {"send-request-services@window", N_("Send it to the authority. When the authority's certificate has "
                                        "come, drop its file on this window, choose it, or paste it.")},
    {"services-request-by-journal@window",
     N_("That a request for the card's own certificate is under way is by this computer's journal.")},
    {"services-request-hidden@window",
     N_("Whether a request for the card's own certificate is under way does not show without the PIN.")},
    {"services-under-way@window", N_("A request for the services certificate is under way. When that has "
                                     "come, choose \"The services certificate has come\".")},
    {"services-under-way-stored@window",
     N_("A request for the services certificate is under way. When that has come, choose \"The services "
        "certificate has come\" and \"Remove the old certificate\".")},
    {"show-card-first@window", N_("No card has been seen on this computer yet. Put yours in the reader.")},
    {"start-service@window", N_("The service of the card readers (PC/SC, pcscd) does not run. Have whoever "
                                "looks after this computer install and start it.")},
    {"waits-for-card@window", N_("Waiting for the card. {missing}")},
};

} // namespace

Rows window_rows() {
    return WINDOW_ROWS;
}

} // namespace words
