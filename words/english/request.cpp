#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row REQUEST_ROWS[] = {
    {"certificate-not-read", N_("The certificate {id} is on the card, but could not be read.")},
    {"generating",
     N_("The card is generating a key pair. This can take a minute; leave the card in the reader.")},
    {"give-force", N_("It is due {days} days before. To renew it now all the same, give --force.")},
    {"give-subject", N_("Give the subject of the request with --subject.")},
    {"given-subject-unfit", N_("The subject cannot go into a request: {reason}.")},
    {"identifier-inside-others", N_("The identifier {id} is part of {others} on the card: another key could "
                                    "be taken for the new one.")},
    {"identifier-too-long", N_("The identifier {id} is too long to be worked with.")},
    {"key-not-there", N_("The key of the certificate {id} is not on the card.")},
    {"left-of-pair", N_("Left on the card of a pair that is no longer whole: {left}. The card's own software "
                        "can remove it.")},
    {"made-request",
     N_("Request for the {kind} certificate {id}, with the new pair {pair}\nSubject: {subject}")},
    {"made-request-again",
     N_("Request for the {kind} certificate {id}, with the waiting pair {pair}\nSubject: {subject}")},
    {"made-request-services",
     N_("Request for the {kind} certificate {id}, with the card's own pair {pair}\nSubject: {subject}")},
    {"no-certificate-named", N_("There is no {kind} certificate {id} on the card.")},
    {"no-certificate-of-kind", N_("There is no {kind} certificate on the card.")},
    {"no-mark", N_("The card bears no mark of the request: the list will not show that it is under way.")},
    {"no-request-made", N_("What came out is no request.")},
    {"none-free", N_("No identifier is free for a new {kind} key: {first} and {last} are taken.")},
    {"not-of-services-card", N_("a request of a services card does not carry {name}")},
    {"not-own-certificate", N_("The certificate {id} is not the services card's own.")},
    {"nothing-due", N_("Nothing to do: the {kind} certificate {id} ends on {ends}, in {days} days.")},
    {"old-subject-unfit", N_("The subject of the certificate cannot go into a request: {reason}.")},
    {"own-keys-of-no-use", N_("Repeat the request with the card in the reader. If that fails in the same "
                              "way, the card's own keys are of no use for a request: its issuer has to "
                              "help.")},
    {"own-keys-stay", N_("The card's own keys {pair} stay and sign the request.")},
    {"pair-cannot-sign", N_("The pair {pair} cannot sign its request.")},
    {"pair-discarded", N_("The pair {pair} that waits on the card is discarded: a certificate for it can no "
                          "longer be installed.")},
    {"pair-may-want-pin", N_("The key {key} wants the PIN before each signature. If the card makes the new "
                             "pair {pair} so, too, that pair cannot sign its request and stays on the card "
                             "without one.")},
    {"pair-not-discarded", N_("The waiting pair could not be discarded.")},
    {"pair-not-whole", N_("The pair {pair} is not on the card whole.")},
    {"pair-used-again", N_("The pair {pair} that waits on the card is used.")},
    {"repeat-discarding", N_("The pair {pair} is not discarded yet: repeat the request.")},
    {"repeat-or-other-certificate", N_("Leave the card in the reader and run the same command again, or name "
                                       "another certificate with --certificate ID.")},
    {"repeat-request", N_("See that the card is in the reader and repeat the request.")},
    {"repeat-with-pair", N_("Repeat the request: it will use the pair {pair} that is on the card.")},
    {"repeat-without-new-pair", N_("Repeat the request without --new-pair: it will use the pair {pair}.")},
    {"replace-new-pair", N_("The card made no request of the pair {pair}. Make another pair: repeat the "
                            "request with --new-pair, which discards {pair}.")},
    {"replace-waiting-pair", N_("The card made no request of the pair {pair}. Make another pair: repeat the "
                                "request with --new-pair, which discards {pair} (a certificate for it can "
                                "then no longer be installed).")},
    {"request-cut", N_("The request came out too long and was cut.")},
    {"request-not-made", N_("The request could not be made{reason}.")},
    {"request-of-other-pair", N_("The request came out for another pair than {pair}.")},
    {"request-saved", N_("Saved as {file}")},
    {"request-saved-before", N_("It is there already, as {file}")},
    {"request-without-new-pair", N_("Repeat the request without --new-pair.")},
    {"send-request", N_("Send it to the authority. When the certificate comes:\n"
                        "  zvrenew install CERTIFICATE --request {file}")},
    {"send-request-services", N_("Send it to the authority. When the certificate comes:\n"
                                 "  zvrenew install CERTIFICATE --request {file} --remove-old")},
    {"services-keep-keys", N_("A services card keeps its own keys: there is no new pair to make.")},
    {"signer-expired",
     N_("The certificate {id} has expired: the authority may not take a request signed with it.")},
    {"signer-wants-pin", N_("The key {key} signs the request and wants the PIN for that: it is given the "
                            "card's. If it has a PIN of its own, that fails and costs one of its tries.")},
    {"the-request", N_("REQUEST")},
};

} // namespace

Rows request_rows() {
    return REQUEST_ROWS;
}

} // namespace words
