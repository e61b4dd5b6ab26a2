#pragma once

#include "host/choice.h"
#include "host/error.h"
#include "host/plan.h"
#include "host/progress.h"

#include <memory>
#include <string>
#include <vector>

namespace zvhost {

// What was removed from a card.
struct Removed {
    CardFacts card;
    std::string id;
    std::string backup; // file with what is public of it
    OnCard now;
};

// A removal that is planned: the card is open, its PIN proved, and nothing is changed yet.
class PlannedRemoval {
  public:
    class Work;

    explicit PlannedRemoval(std::shared_ptr<Work> work);

    // Each object that goes, in this order: certificate, public key, private key.
    [[nodiscard]] const Plan& plan() const;
    // Saves what goes (PEM, RFC 7468; the private key cannot be saved), then removes exactly the objects of the plan, found
    // again by class, identifier and value, each by its handle (C_DestroyObject, PKCS#11 2.40). Once.
    // @throws Error, which says what is on the card then. Before the backup is written nothing has been removed; afterwards
    //         some objects may be gone, and the same removal, planned again, goes on
    [[nodiscard]] Removed apply(Progress& progress);

  private:
    std::shared_ptr<Work> work_;
};

// What is wanted of a removal.
struct RemovalWishes {
    std::string id;     // CKA_ID of a certificate with its keys, or of the keys that a removal left; whole
    bool last = false;  // also of the certificate of its kind that ends last
    std::string backup; // new file for what goes; empty: a name made from the identifier
};

// Opens the card, proves the PIN and plans the removal of a certificate with its keys, or of the keys that a removal left.
// Nothing is changed.
//
// @throws Error with Exit::refused for a services card's own certificate, for what waits for its certificate, for several
//         certificates or foreign keys under one identifier, for an identifier that is not there whole, and, without
//         `last`, for the certificate of its kind that ends last; with Exit::failed when the card cannot be read
[[nodiscard]] PlannedRemoval plan_removal(const RemovalWishes& wishes, const CardChoice& choice,
                                          PinSource& pin);

// The same for a pair that waits for its certificate: none can be installed for it any more, and the authority's answer to
// its request is of no use.
//
// @throws Error with Exit::refused for a pair that has a certificate, for a card's first keys (digits 0 to 2), which no
//         request was made for, and for a services card's own; with Exit::failed when the card cannot be read
[[nodiscard]] PlannedRemoval plan_discard(const RemovalWishes& wishes, const CardChoice& choice,
                                          PinSource& pin);

} // namespace zvhost
