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

    [[nodiscard]] const Plan& plan() const;
    // Saves what goes, then removes exactly the objects of the plan. Once.
    // @throws Error, which says what is on the card then; the same removal again goes on
    [[nodiscard]] Removed apply(Progress& progress);

  private:
    std::shared_ptr<Work> work_;
};

// What is wanted of a removal.
struct RemovalWishes {
    std::string id;     // of a certificate with its keys, or of the keys that a removal left
    bool last = false;  // also of the certificate of its kind that ends last
    std::string backup; // new file for what goes; empty: a name made from the identifier
};

// Plans the removal of a certificate with its keys. A services card's own certificate is refused, and what waits for a
// certificate. @throws Error
[[nodiscard]] PlannedRemoval plan_removal(const RemovalWishes& wishes, const CardChoice& choice,
                                          PinSource& pin);

// Plans the removal of a pair that waits for its certificate: none can be installed for it any more. A pair that has a
// certificate is refused. @throws Error
[[nodiscard]] PlannedRemoval plan_discard(const RemovalWishes& wishes, const CardChoice& choice,
                                          PinSource& pin);

} // namespace zvhost
