#pragma once

#include "host/choice.h"
#include "host/error.h"
#include "host/plan.h"
#include "host/progress.h"
#include "host/wishes.h"

#include <memory>
#include <string>
#include <vector>

namespace zvhost {

// What became of the certificate that was replaced.
enum class OldCertificateNow { none, gone_before, removed, beside, under_the_same_identifier };

// A certificate that was installed and proved.
struct Installed {
    CardFacts card;
    Kind kind = Kind::signature;
    std::string pair;        // identifier of its keys
    bool signed_with = true; // false: the key's modulus was compared with the certificate's instead
    std::string replaces;    // identifier of the old one; empty for none
    OldCertificateNow old = OldCertificateNow::none;
    std::vector<std::string> removed; // identifiers
    std::vector<std::string> left;    // of what a removal before this one left for good
    bool other_issuer = false;
    std::string backup; // file with the old certificate; empty: there is none
    OnCard now;
    bool mark_left = false; // a services card still bears the mark of the request
    std::vector<Advice> advice;
};

// An installation that is planned: the card is open, its PIN proved, and nothing is changed yet.
class PlannedInstall {
  public:
    class Work;

    explicit PlannedInstall(std::shared_ptr<Work> work);

    [[nodiscard]] const Plan& plan() const;

    // Saves what is replaced, stores the certificate and proves it with its key. Once.
    // @throws Error, which says what is on the card then
    [[nodiscard]] Installed apply(Progress& progress);

  private:
    std::shared_ptr<Work> work_;
};

// Reads the files, opens the card, finds the certificate's pair and what it replaces, and refuses what would go wrong
// there. @throws Error
[[nodiscard]] PlannedInstall plan_install(const InstallWishes& wishes, const CardChoice& choice,
                                          PinSource& pin);

} // namespace zvhost
