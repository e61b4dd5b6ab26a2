#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row INSTALL_ROWS[] = {
    {"accept-anyway", N_("Ask the authority. To install it all the same, give {option}.")},
    {"all-have-one-identifier",
     N_("All have the identifier {id}: install without --remove-old, or first remove the ones that are no "
        "longer needed with the card's own software.")},
    {"begins-later", N_("It does not begin before {begins}.")},
    {"certificate-another", N_("the certificate {id} on the card is another one.")},
    {"certificate-goes-first",
     N_("The card has no room for both certificates: {id} is removed before the new one is stored, and "
        "stored back should that fail. Its keys go once the new one is proved.")},
    {"certificate-missing", N_("there is no certificate {id} on the card.")},
    {"certificate-not-storable", N_("The certificate cannot be stored: {reason}.")},
    {"certificate-not-stored", N_("The certificate could not be stored{reason}.")},
    {"certificate-of-no-use", N_("The certificate is of no use here. {reasons}")},
    {"certificate-of-other-key",
     N_("The certificate is for another key than what can take one on the card ({pairs}).")},
    {"certificate-of-other-request",
     N_("The certificate in {file} is for another key than the request in {request}.")},
    {"certificate-too-large", N_("it is too large")},
    {"certificate-unsaved", N_("A certificate {id} cannot be saved.")},
    {"ends-before-old", N_("It ends on {ends}, before the old one ({old_ends}).")},
    {"give-whole-identifier", N_("Give an identifier as zvrenew list shows it, whole.")},
    {"has-ended", N_("It ended on {ends}.")},
    {"install-on-its-card", N_("Install it on the card whose request it answers.")},
    {"install-without-remove-old", N_("Install without --remove-old.")},
    {"installed-compared",
     N_("The key {pair} wants a PIN before each signature. The card's was refused, or not sent on its last "
        "try:\nthe key was compared with the new certificate instead. It may have a PIN of its own.")},
    {"installed-removed-certificate", N_("Removed: the old certificate {id}.")},
    {"key-neither-tried-nor-fitting", N_("the key {key} wants a PIN before each signature and was not tried; "
                                         "nor is its modulus the certificate's.")},
    {"key-not-rsa", N_("its key is not an RSA key")},
    {"key-too-long", N_("its key has more than {bits} bits")},
    {"left-of-removed", N_("Left on the card of a certificate removed before: {left}. zvrenew remove takes "
                           "away what zvrenew list "
                           "shows as left, the card's own software the rest.")},
    {"make-room-first",
     N_("If the card is full, first remove a certificate that is no longer needed:  zvrenew remove ID")},
    {"mark-left", N_("The mark {mark} of the request is still on the card: the list shows a request under "
                     "way until the next\ncertificate is installed, or the card's own software removes it.")},
    {"names-too-long", N_("its subject or issuer has more than {bytes} bytes")},
    {"no-pair-waits", N_("No pair on the card waits for a certificate.")},
    {"no-random-text", N_("no random text could be made.")},
    {"no-request-in-file", N_("There is no request in {file}.")},
    {"old-beside", N_("The old certificate {id} is still on the card.")},
    {"old-gone-before", N_("The old certificate is no longer on the card.")},
    {"old-makes-room", N_("If the card is full, the old certificate makes room: give --remove-old --replace "
                          "{id} beside that.")},
    {"old-same-identifier", N_("The old certificate is still on the card, under the same identifier {id}: "
                               "programs may take it for the new\none. Only the card's own software can "
                               "remove it now; --remove-old does so before storing.")},
    {"one-certificate-only",
     N_("A card that takes one certificate of an identifier only needs --remove-old beside that.")},
    {"or-replace-this", N_("or --replace {id}")},
    {"other-backup-file", N_("Give the backup another name with --backup FILE.")},
    {"other-certificate-would-go",
     N_("Another certificate has the identifier {id} too, and would be removed.")},
    {"other-holder", N_("It is for {holder}, and the card is of {known}.")},
    {"other-issuer", N_("Another authority issued it: {issuer}; the old one was issued by {old_issuer}.")},
    {"other-key-would-go", N_("Another key has the identifier {id} too, and would be removed.")},
    {"other-purpose", N_("It is for another purpose: a {kind} certificate has the key usage {usage}.")},
    {"others-would-go",
     N_("The identifier {id} is part of {others} on the card, which would be removed with it.")},
    {"pair-inside-others",
     N_("The identifier {id} is part of {others} on the card: another key could get the certificate.")},
    {"private-key-missing", N_("there is no private key {id} on the card.")},
    {"public-key-unsaved", N_("The public key {id} cannot be saved.")},
    {"remove-with-card-software", N_("Remove it with the card's own software.")},
    {"removing-authority", N_("The authority's certificate \"{id}\" goes too: nothing puts it back.")},
    {"removing-certificate", N_("Removing the old certificate {id} from the card; its keys stay.")},
    {"removing-with-keys", N_("Removing {id} from the card, keys included.")},
    {"repeat-keys-unchanged", N_("The keys {pair} are as they were: run the same command again.")},
    {"repeat-pair-waits", N_("The pair {pair} still waits for the certificate: run the same command again.")},
    {"repeat-to-try-key", N_("To try the new key once more, run the same command again.")},
    {"repeat-with-card", N_("Put the card in the reader and run the same command again.")},
    {"replace-this", N_("--replace {id}")},
    {"request-for-certificate", N_("{file} is a request, not the certificate that answers it.")},
    {"say-which", N_("Say which one with {choices}.")},
    {"see-card", N_("See what is on the card with: zvrenew list")},
    {"several-could-go",
     N_("There are several {kind} certificates on the card, and nothing says which of them goes.")},
    {"signature-does-not-verify", N_("a signature of the key {key} does not verify with its certificate.")},
    {"stored-already",
     N_("The certificate is on the card already, as {pair}: a signature of its key verifies with it.")},
    {"stored-already-compared", N_("The certificate is on the card already, as {pair}: its key, which wants "
                                   "a PIN before each signature, is the right one.")},
    {"stored-beside-another", N_("The new certificate is stored and verified, as {pair}, but another "
                                 "certificate {pair} is still there.")},
    {"stored-leaving",
     N_("The new certificate is stored and verified, as {pair}, but {left} could not be removed whole.")},
};

} // namespace

Rows install_rows() {
    return INSTALL_ROWS;
}

} // namespace words
