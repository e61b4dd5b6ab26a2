#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row MODULE_ROWS[] = {
    {"call-ask", N_("Asking the card for its state")},
    {"call-begin-signature", N_("Starting a signature")},
    {"call-failed", N_("{what} failed{reason}.")},
    {"call-list", N_("Listing the slots")},
    {"call-login", N_("The login")},
    {"call-open", N_("Opening a session with the card")},
    {"call-read", N_("Reading an object of the card")},
    {"call-remove", N_("Removing an object from the card")},
    {"call-search", N_("Searching the card")},
    {"call-sign", N_("Signing with the card")},
    {"call-signature-login", N_("The login for a signature")},
    {"call-start", N_("Starting the card's module")},
    {"call-store", N_("Storing an object on the card")},
    {"keys-doubled",
     N_("There are several private keys {id} on the card: which one is taken would be chance.")},
    {"keys-doubled-advice", N_("With the card's own software, remove the keys {id} that no certificate is "
                               "wanted for; then run the command again.")},
    {"module-folder-long", N_("The module's folder has a path of more than {most} characters.")},
    {"module-install",
     N_("Install the card maker's software, or say where the module is with --module-dir.")},
    {"module-missing", N_("The card needs the module {module}, which is not in {folders}.")},
    {"module-none", N_("{file} is no PKCS#11 module.")},
    {"module-unloaded", N_("The module {module} cannot be loaded: {reason}.")},
};

} // namespace

Rows module_rows() {
    return MODULE_ROWS;
}

} // namespace words
