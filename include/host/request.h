#pragma once

#include "host/certificate_record.h"
#include "host/choice.h"
#include "host/error.h"
#include "host/plan.h"
#include "host/progress.h"
#include "host/wishes.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zvhost {

// A request that was made, or is there already.
struct MadeRequest {
    CardFacts card;
    Kind kind = Kind::signature;
    std::string renews; // identifier of the certificate
    std::string pair;   // identifier of the pair that it is for
    bool reused = false;
    DistinguishedName subject;
    std::string file;           // empty: it goes to no file
    bool there_already = false; // an earlier run saved it
    std::string text;           // the request itself, where it goes to no file
    std::vector<Advice> advice;
    // Says what is on the card in an error, should the text reach nobody.
    std::function<void(Error&)> unsaid;
};

// A request that is planned: the card is open, its PIN proved, and nothing is changed yet.
class PlannedRequest {
  public:
    class Work;

    explicit PlannedRequest(std::shared_ptr<Work> work);

    [[nodiscard]] const Plan& plan() const;
    // Identifier of the pair that the request is for.
    [[nodiscard]] const std::string& pair() const;

    // Has the card make the keys and the request. Once. @throws Error, which says what is on the card then
    [[nodiscard]] MadeRequest apply(Progress& progress);

  private:
    std::shared_ptr<Work> work_;
};

// Opens the card and decides what to renew, and under which identifier; refuses what would go wrong there.
// @throws Error
[[nodiscard]] PlannedRequest plan_request(const RequestWishes& wishes, const CardChoice& choice,
                                          PinSource& pin);

} // namespace zvhost
