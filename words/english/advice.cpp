#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row ADVICE_ROWS[] = {
    {"card-full", N_("The card is full. Remove a certificate that is no longer needed, with its keys "
                     "(zvrenew list shows them), with zvrenew remove ID; then run the same command again.")},
    {"card-not-read", N_("The card could not be read{reason}.")},
    {"enter-card", N_("Its ATR, which opensc-tool -a tells, has to stand in ~/.config/zvcrypt.conf or "
                      "{folder}/zvcrypt.conf with the file name of its maker's PKCS#11 module:\n"
                      "  [card NAME]\n"
                      "  atr = ATR\n"
                      "  module = MODULE.so")},
    {"free-identifier", N_("New {kind} keys go under {first} or {last}, and none is free. Remove the "
                           "certificate among them that is no longer needed, with its keys:  "
                           "zvrenew remove ID")},
    {"key-wants-own-pin", N_("Do not run the same command again as it is: the key {key} wants a PIN before "
                             "each signature, has the card's alone been offered, and may count a try each "
                             "time. If that key has a PIN of its own, make it the card's with the card's own "
                             "software, then run the command again; if the card does not allow that, ask its "
                             "issuer.")},
    {"pin-each-signature", N_("The key {pair} wants the PIN before each signature, and the library does not "
                              "give it for a pair's own signature of its request. Ask the card's issuer: the "
                              "card's own software can request a certificate for {pair}, or remove it where "
                              "no certificate is wanted for it.")},
    {"start-service", N_("Install and start the PC/SC service (Debian: apt install pcscd; systemctl start "
                         "pcscd.socket), and see what it shows with: zvrenew readers")},
    {"unchanged-try-again",
     N_("Nothing on the card was changed. Leave the card in the reader and try again.")},
};

} // namespace

Rows advice_rows() {
    return ADVICE_ROWS;
}

} // namespace words
