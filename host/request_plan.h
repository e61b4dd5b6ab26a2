#pragma once

#include "host/card_view.h"
#include "host/inventory.h"
#include "host/wishes.h"

#include <optional>
#include <string>
#include <vector>

namespace zvhost {

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

// Refuses wishes that contradict each other. @throws Error
void check_wishes(const RequestWishes& wishes);

// The subject given with --subject, checked before anything is asked; none when none was given.
// @throws Error
[[nodiscard]] std::optional<DistinguishedName> given_subject(const RequestWishes& wishes);

// Decides what to renew and under which identifier, and refuses what would go wrong on the card.
//
// @throws Error; with Exit::nothing_due when the certificate is not due
[[nodiscard]] RequestPlan plan_request(const RequestWishes& wishes, const Inventory& inventory,
                                       const CardView& view, std::optional<DistinguishedName> subject);

// The notice that it may be for nothing.
inline constexpr const char* SIGNER_EXPIRED = "signer-expired";

// What a person should know before it is carried out.
[[nodiscard]] std::vector<Sentence> notices_of(const RequestPlan& plan);

} // namespace zvhost
