#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row DOCTOR_ROWS[] = {
    {"doctor-add-card", N_("Put these lines into ~/.config/zvcrypt.conf (or the system's zvcrypt.conf), with "
                           "the file name of its "
                           "maker's PKCS#11 module:\n"
                           "  [card NAME]\n"
                           "  atr = {atr}\n"
                           "  module = MODULE.so")},
    {"doctor-ask-issuer", N_("Ask the card's issuer: it takes the card's own software.")},
    {"doctor-at-work", N_("Another program (process {process}) is at work with the library.")},
    {"doctor-card", N_("\"{reader}\" holds a card; its ATR is {atr}.")},
    {"doctor-certificate-begins", N_("The certificate {id} begins on {begins}, in the future: the clock is "
                                     "wrong, or it is not valid yet.")},
    {"doctor-change-pin", N_("Change the PIN with the card's own software.")},
    {"doctor-check-pin", N_("Make sure of the PIN before the next try.")},
    {"doctor-clock", N_("It is {now}.")},
    {"doctor-clock-off", N_("It is {now}, as this computer says: that cannot be.")},
    {"doctor-close-program", N_("Close {program}, or end it with: kill {process}")},
    {"doctor-complete-module",
     N_("Install what it needs, or the card's software again. What it lacks, tells: ldd \"{module}\"")},
    {"doctor-configuration", N_("{file} counts.")},
    {"doctor-configuration-first", N_("{file} counts; {unread} is not read beside it.")},
    {"doctor-configuration-none", N_("There is none: the built-in card table alone counts.")},
    {"doctor-configuration-refused", N_("The configuration cannot be used{reason}.")},
    {"doctor-empty-folder", N_("Make room in {folder}: remove files there that nobody needs.")},
    {"doctor-end-scdaemon", N_("It lets the card go after: gpgconf --kill scdaemon")},
    {"doctor-final-try",
     N_("If you are sure of the PIN, give --final-try; the right PIN gives the tries back.")},
    {"doctor-folder", N_("{folder} can be written and has {free} bytes free.")},
    {"doctor-folder-closed", N_("{folder} cannot be written: no request can be made.")},
    {"doctor-folder-full", N_("{folder} has only {free} bytes free: a request may not pass.")},
    {"doctor-have-removed", N_("Have {owner} or an administrator remove it: rm -r \"{file}\"")},
    {"doctor-in-the-way", N_("{file}, of {owner}, is in the way of the library's: no request can be made.")},
    {"doctor-insert-card", N_("Put the card in.")},
    {"doctor-keypad", N_("\"{reader}\" has a keypad of its own, but the PIN is still typed at the computer "
                         "and sent as text.")},
    {"doctor-left-over", N_("{file}, your own, was left by a request that was broken off.")},
    {"doctor-log", N_("{file} is written; it has {size} bytes.")},
    {"doctor-log-folder", N_("The log's folder {folder} cannot be used: there will be no log.")},
    {"doctor-log-none-yet", N_("{file} is not there yet and will be made.")},
    {"doctor-log-nowhere", N_("This user has no home: there will be no log.")},
    {"doctor-log-unusable",
     N_("{file}, of {owner}, is no plain file of your own that can be written: there will be no log.")},
    {"doctor-low-slot",
     N_("Unplug the other readers. If the number stays, ask the card's issuer for a module "
        "that numbers its slots from 0 to {last}.")},
    {"doctor-make-room",
     N_("Remove a certificate that is no longer needed, with its keys, using the card's own software.")},
    {"doctor-mend-configuration",
     N_("Mend the line of {file} that is named; the form is in: man zvcrypt.conf")},
    {"doctor-mend-module", N_("Install the card's software again, or a newer version of it.")},
    {"doctor-module", N_("{module} loads, starts and shows its slots.")},
    {"doctor-module-beside-program", N_("{module} is in {folder}, beside this program.")},
    {"doctor-module-crashes", N_("{module} crashed (signal {signal}) while {step}.")},
    {"doctor-module-hangs", N_("{module} gave no answer within {seconds} seconds.")},
    {"doctor-module-in-system", N_("{module} is in {folder}, one of the system's folders.")},
    {"doctor-module-none", N_("{module} is no PKCS#11 module.")},
    {"doctor-module-not-loaded", N_("{module} cannot be loaded: {reason}.")},
    {"doctor-module-not-started", N_("{module} does not start (C_Initialize answered {code}).")},
    {"doctor-module-silent", N_("{module} does not list its slots.")},
    {"doctor-module-where-told", N_("{module} is in {folder}, as --module-dir says.")},
    {"doctor-mute-card", N_("The card in \"{reader}\" does not answer.")},
    {"doctor-no-card", N_("\"{reader}\" holds no card.")},
    {"doctor-no-card-anywhere", N_("There is no card in any reader.")},
    {"doctor-no-reader", N_("There is no card reader.")},
    {"doctor-one-configuration",
     N_("Only one file counts, never several: put into {file} what is wanted of the others.")},
    {"doctor-open-folder", N_("Ask an administrator: chmod 1777 {folder}")},
    {"doctor-open-log-folder", N_("Let yourself write there: chmod u+rwx \"{folder}\"")},
    {"doctor-other-card", N_("a signature card")},
    {"doctor-pin", N_("The PIN is set, and the card gives no warning of its tries.")},
    {"doctor-pin-last-try", N_("One try is left, then the PIN is locked.")},
    {"doctor-pin-locked", N_("The PIN is locked.")},
    {"doctor-pin-low", N_("Fewer tries of the PIN are left than usual.")},
    {"doctor-pin-not-set", N_("No PIN has been set on the card.")},
    {"doctor-pin-to-be-changed", N_("The card wants its PIN changed before it is used.")},
    {"doctor-plug-reader", N_("Plug the reader in and put the card in it.")},
    {"doctor-program", N_("{program} (process {process}) may hold the card: it uses {library}.")},
    {"doctor-programs-none",
     N_("No other program that may be looked at uses a card ({hidden} may not be looked at).")},
    {"doctor-programs-unknown", N_("Which programs use a card cannot be told on this system.")},
    {"doctor-reader-unreachable", N_("\"{reader}\" cannot be looked at{reason}.")},
    {"doctor-readers", N_("There is: {readers}.")},
    {"doctor-readers-failed", N_("The readers cannot be listed{reason}.")},
    {"doctor-reinsert-card", N_("Take the card out and put it in again.")},
    {"doctor-remove-own", N_("Remove it: rm -r \"{file}\"")},
    {"doctor-room", N_("Free on the card: {free_public} of {total_public} bytes public, {free_private} of "
                       "{total_private} private.")},
    {"doctor-room-little",
     N_("Little is free on the card: {free_public} of {total_public} bytes public, {free_private} of "
        "{total_private} private.")},
    {"doctor-room-unknown", N_("The card does not say how much room it has.")},
    {"doctor-service", N_("The PC/SC service answers.")},
    {"doctor-service-not-needed",
     N_("The PC/SC service does not answer; the software readers of the configuration need none.")},
    {"doctor-service-silent", N_("The PC/SC service does not answer.")},
    {"doctor-services-card", N_("a services card")},
    {"doctor-set-clock",
     N_("Compare with the time that date -u tells, and set it: timedatectl set-ntp true")},
    {"doctor-slot", N_("\"{reader}\" is slot {slot} of {module}.")},
    {"doctor-slot-high",
     N_("\"{reader}\" is slot {slot} of {module}: requests and installing work with slots 0 "
        "to {last} only.")},
    {"doctor-step-ending", N_("it was ended")},
    {"doctor-step-listing", N_("it listed its slots")},
    {"doctor-step-loading", N_("it was loaded")},
    {"doctor-step-reading", N_("a card was read")},
    {"doctor-step-starting", N_("it was started")},
    {"doctor-table-built-in",
     N_("The built-in card table knows the card in \"{reader}\": {kind}, module {module}.")},
    {"doctor-table-differs",
     N_("The crypto library gives the card in \"{reader}\" the module {module}, though "
        "[card {entry}] (line {line} of {file}) comes first.")},
    {"doctor-table-entry",
     N_("[card {entry}] (line {line} of {file}) knows the card in \"{reader}\": {kind}, "
        "module {module}.")},
    {"doctor-table-unknown", N_("No entry of the card table fits the card in \"{reader}\" (ATR {atr}).")},
    {"doctor-token", N_("The card in \"{reader}\" is {serial} (\"{label}\"), initialised.")},
    {"doctor-token-blank", N_("The card in \"{reader}\" has not been initialised: it is blank.")},
    {"doctor-token-silent", N_("The card in \"{reader}\" says nothing of itself.")},
    {"doctor-turn-card", N_("Take the card out and put it in the right way round.")},
    {"doctor-unlock", N_("Unlock it with the card's PUK, using the card's own software.")},
    {"doctor-version-crypto", N_("Crypto library: {file}.")},
    {"doctor-version-library", N_("Library: {version}, {file}.")},
    {"doctor-version-module", N_("Module: {description} {version}, of {maker}, PKCS#11 {standard}, {file}.")},
    {"doctor-version-openssl", N_("OpenSSL: {version}, {file}.")},
    {"doctor-wait", N_("Run the command again when that one has ended.")},
    {"doctor-write-protected", N_("The card in \"{reader}\" takes no new objects through this module.")},
    {"help-desk-masked",
     N_("For a help desk, from zvrenew doctor. This is plain text: read it before you send it. "
        "Names, tax codes, the\nuser's name and folder were taken out; a PIN is never in it.")},
    {"help-desk-saved", N_("Saved as {file}. It is plain text: read it before you send it.")},
    {"help-desk-with-names",
     N_("For a help desk, from zvrenew doctor. This is plain text: read it before you send "
        "it. Names and tax\ncodes are in it; a PIN never is.")},
};

} // namespace

Rows doctor_rows() {
    return DOCTOR_ROWS;
}

} // namespace words
