#include "words/english/rows.h"

namespace words {
namespace {

// An ampersand stands before the letter that, with Alt, presses a button.
constexpr Row DESKTOP_ROWS[] = {
    {"window-back", N_("&Back")},
    {"window-backup-folder", N_("A copy of the old certificate goes to the folder {folder}.")},
    {"window-caps-lock", N_("The capitals key is on.")},
    {"window-card-heading", N_("The certificates on your card")},
    {"window-certificate", N_("{standing}: {kind} certificate of {holder}, from {begins} to {ends}")},
    {"window-choose-certificate", N_("&Choose the certificate")},
    {"window-close-question", N_("The card is at work. Close the window when this step is done?")},
    {"window-copied", N_("The request is in the clipboard.")},
    {"window-copy-request", N_("C&opy the request")},
    {"window-done-heading", N_("The {kind} certificate is renewed")},
    {"window-drag-request", N_("Drag from here: {file}")},
    {"window-drop-certificate",
     N_("When the authority's certificate has come, drop its file on this window, choose it, or paste it.")},
    {"window-due", N_("DUE (days left: {days})")},
    {"window-ended", N_("EXPIRED")},
    {"window-final-try", N_("I am &sure of the PIN: if it is wrong, the card locks")},
    {"window-finish-renewal", N_("Finish the renewal ({kind})")},
    {"window-finish", N_("&Finish")},
    {"window-folder-unusable", N_("The folder {folder} cannot be used.")},
    {"window-go-on", N_("&Go on")},
    {"window-help-desk", N_("Send to the &help desk")},
    {"window-install-heading", N_("Put the new {kind} certificate on the card")},
    {"window-looking-heading", N_("Looking for readers and cards")},
    {"window-more-heading", N_("More has to be done than was told")},
    {"window-no-card-heading", N_("Put your card into the reader")},
    {"window-no-reader-heading", N_("Plug in a card reader")},
    {"window-nothing-due", N_("Nothing needs to be renewed now.")},
    {"window-not-pasted",
     N_("What is in the clipboard could not be put into a temporary file. Save it as a file yourself, and "
        "choose that.")},
    {"window-nothing-to-paste", N_("There is no text in the clipboard.")},
    {"window-on-card", N_("On the card now: {now}")},
    {"window-paste-certificate", N_("&Paste the certificate")},
    {"window-pin", N_("&PIN of the card")},
    {"window-problem-heading", N_("That did not work")},
    {"window-proved", N_("Signed and verified with the new certificate.")},
    {"window-renew-anyway", N_("Renew it &all the same")},
    {"window-new-pair", N_("&Make new keys")},
    {"window-without-new-pair", N_("&Keep the keys that wait")},
    {"window-keep-old", N_("Keep the &old certificate")},
    {"window-replace", N_("It replaces {id}")},
    {"window-install-anyway", N_("&Install it all the same")},
    {"window-other-certificate", N_("&Choose another certificate")},
    {"window-help-desk-saved", N_("Saved in {file}. Read it, then send it to the help desk.")},
    {"window-today", N_("The dashed line is today, {day}.")},
    {"window-untidied",
     N_("The new {kind} certificate is on the card and works. What is left is to remove the "
        "old one.")},
    {"window-untried", N_("The new {kind} certificate is on the card. What is left is to try it.")},
    {"window-untouched", N_("Nothing was changed on the card.")},
    {"window-readers", N_("Card readers")},
    {"window-remove-old", N_("&Remove the old certificate")},
    {"window-renew", N_("&Renew the {kind} certificate")},
    {"window-renew-heading", N_("Renew the {kind} certificate")},
    {"window-replaced", N_("REPLACED")},
    {"window-request-again", N_("Make the &request once more")},
    {"window-request-gone", N_("The request's file is gone: {file}")},
    {"window-request-how",
     N_("This makes a request, which you send to the authority that issued your certificate. When its answer "
        "has come, the new certificate is put on the card.")},
    {"window-request-there",
     N_("Send the request to the authority that issued your certificate. It is in {file}")},
    {"window-save-request", N_("&Save the request")},
    {"window-saved", N_("Saved: {file}")},
    {"window-step", N_("Step {number} of {of}: {what}")},
    {"window-stop", N_("&Stop after this step")},
    {"window-take-certificate", N_("The {kind} certificate has &come")},
    {"window-time", N_("{seconds} s")},
    {"window-time-before", N_("{seconds} s; the last time it took {before} s")},
    {"window-title", N_("Certificates on smart cards")},
    {"window-title-of", N_("{page} - Certificates on smart cards")},
    {"window-to-start", N_("To the &start")},
    {"window-trouble-heading", N_("The card cannot be read")},
    {"window-try-again", N_("&Try again")},
    {"window-unlisted-heading", N_("The card readers cannot be used")},
    {"window-unsaved", N_("{file} could not be written.")},
    {"window-valid", N_("Valid (days left: {days})")},
    {"window-waits", N_("Waiting for the {kind} certificate from the authority. When it has come, or to send "
                        "the request once more, go on here:")},
    {"window-waits-heading", N_("Waiting for the {kind} certificate from the authority")},
    {"window-work-heading", N_("Do not take the card out")},
};

} // namespace

Rows desktop_rows() {
    return DESKTOP_ROWS;
}

} // namespace words
