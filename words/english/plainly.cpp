#include "words/english/rows.h"

namespace words {
namespace {

// A plan, for somebody who knows no objects.
constexpr Row PLAINLY_ROWS[] = {
    {"plainly-certificate-stored", N_("The new certificate is stored beside its keys.")},
    {"plainly-keys-made", N_("Two keys are made on the card.")},
    {"plainly-keys-removed", N_("The keys {id} are removed.")},
    {"plainly-marked", N_("The card is marked: a request is under way.")},
    {"plainly-nothing-changed", N_("Nothing on the card is changed.")},
    {"plainly-nothing-removed", N_("Nothing is removed.")},
    {"plainly-removed", N_("The certificate {id}, valid until {ends}, is removed; its keys stay.")},
    {"plainly-removed-undated", N_("The certificate {id} is removed; its keys stay.")},
    {"plainly-removed-with-keys", N_("The certificate {id}, valid until {ends}, and its keys are removed.")},
    {"plainly-removed-with-keys-undated", N_("The certificate {id} and its keys are removed.")},
    {"plainly-unmarked", N_("The card is no longer marked: the request is answered.")},
    {"plainly-waiting-removed",
     N_("The keys {id}, which wait for a certificate, are removed: none can be installed for "
        "them any more.")},
};

} // namespace

Rows plainly_rows() {
    return PLAINLY_ROWS;
}

} // namespace words
