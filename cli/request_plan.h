#pragma once

#include "cli/card_view.h"
#include "cli/inventory.h"
#include "cli/options.h"

#include <optional>
#include <string>
#include <vector>

namespace cli {

// What a request is going to do to the card; made before anything is done.
struct RequestPlan {
    CertificateRecord old; // the certificate being renewed, whose key signs the request
    DistinguishedName subject;
    std::string pair;     // identifier of the new pair, or of a services card's own
    bool reuse = false;   // the pair is on the card already
    bool discard = false; // the pair is on the card, to be replaced by a new one under its identifier
    Bytes pending_key;    // modulus of the pair that is on the card already
    std::string
        wants_pin; // a certified key of the kind that wants the PIN before each signature; empty for none
    bool signer_wants_pin = false; // the old certificate's key, which signs the request, is such a one
    std::vector<std::string> left; // identifiers of single keys, left of other pairs
};

// Refuses options that contradict each other. @throws Stop
void check_options(const RequestOptions& options);

// The subject given with --subject, checked before anything is asked; none when none was given.
// @throws Stop
[[nodiscard]] std::optional<DistinguishedName> given_subject(const RequestOptions& options);

// Decides what to renew and under which identifier, and refuses what would go wrong on the card.
//
// @throws Stop; with Exit::nothing_due when the certificate is not due
[[nodiscard]] RequestPlan plan_request(const RequestOptions& options, const Inventory& inventory,
                                       const CardView& view, std::optional<DistinguishedName> subject);

} // namespace cli
