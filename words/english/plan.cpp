#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row PLAN_ROWS[] = {
    {"change-create-certificate", N_("  + certificate {id}, {size} bytes: {why}")},
    {"change-create-data", N_("  + data object {label}: {why}")},
    {"change-create-key", N_("  + {what} {id}, {size} bits: {why}")},
    {"change-relabel", N_("  ~ {what} {id}, labelled {label}: {why}")},
    {"change-remove-certificate", N_("  - certificate {id}, {size} bytes: {why}")},
    {"change-remove-data", N_("  - data object {label}: {why}")},
    {"change-remove-key", N_("  - {what} {id}, {size} bits: {why}")},
    {"no-digest", N_("A digest could not be made.")},
    {"object-certificate", N_("certificate")},
    {"object-private key", N_("private key")},
    {"object-public key", N_("public key")},
    {"plan-again", N_("Look at the plan once more with --dry-run.")},
    {"plan-changed", N_("The card, or what would be done to it, is no longer what the plan was made for: its "
                        "fingerprint is {fingerprint} now.")},
    {"plan-empty", N_("Nothing on the card would be changed.")},
    {"plan-fingerprint", N_("Fingerprint of this plan: {fingerprint}")},
    {"plan-heading", N_("This would be done to the card:")},
    {"plan-logins", N_("Times that the PIN would go to the card: {logins}")},
    {"plan-room", N_("Room that the card has: {room} bytes")},
    {"why-authority-removed", N_("the authority's certificate goes with the old one; nothing puts it back")},
    {"why-makes-room", N_("makes room for the certificate of {pair}")},
    {"why-mark", N_("marks that a request is under way")},
    {"why-mark-removed", N_("the request is answered")},
    {"why-new-certificate", N_("the new certificate, beside its keys")},
    {"why-new-pair", N_("the new keys")},
    {"why-old-removed", N_("the old certificate {id} is removed")},
    {"why-pair-discarded", N_("the pair {pair} that waits is discarded")},
    {"why-relabelled", N_("its certificate comes")},
};

} // namespace

Rows plan_rows() {
    return PLAN_ROWS;
}

} // namespace words
