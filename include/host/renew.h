#pragma once

#include "host/choice.h"
#include "host/error.h"
#include "host/install.h"
#include "host/plan.h"
#include "host/progress.h"
#include "host/request.h"
#include "host/wishes.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zvhost {

// Who issues the certificate, as far as a renewal meets it.
class Authority {
  public:
    Authority() = default;
    virtual ~Authority() = default;
    Authority(const Authority&) = delete;
    Authority& operator=(const Authority&) = delete;

    // File that holds a certificate that has come already; empty: none. It need not answer this renewal's request.
    [[nodiscard]] virtual std::string at_hand() { return {}; }
    // Hands a request over (base64 of a CMS message, RFC 5652) and gives the file that holds the answer; empty when it has
    // not come yet. @throws Error
    [[nodiscard]] virtual std::string ask(const std::string& request) = 0;
};

// What is wanted of a renewal. The request's file and the certificate's backup have usual names where none is given.
struct RenewalWishes {
    RequestWishes request; // `out`: new file for the request, or the one that an earlier run made
    bool remove_old = false;
    std::string replace; // identifier; empty: found from the request, or remembered by this computer
    std::string backup;
    std::vector<std::string> accept;
};

// How far a renewal came.
struct Renewal {
    CardFacts card;
    Kind kind = Kind::signature;
    bool done = false; // false: it waits for the authority's certificate
    std::string pair;
    std::string request;                // its file
    std::optional<Installed> installed; // in this run
    std::string removed; // identifier of the old certificate; empty: it was not removed by this run
    std::string backup;
    OnCard now;
    std::vector<Advice> advice;
};

// A renewal, from wherever an earlier run left it: what is on the card says where, files and this computer's journal are
// hints. The card is open as long as a step of the plan is to come.
class PlannedRenewal {
  public:
    class Work;

    explicit PlannedRenewal(std::shared_ptr<Work> work);

    // What is done to the card next; for later steps see the notices.
    [[nodiscard]] const Plan& plan() const;
    // Goes on to the end, or until the authority's certificate is waited for. Once.
    // @throws Error, which says what is on the card then; the same renewal planned again goes on
    [[nodiscard]] Renewal apply(Progress& progress);

  private:
    std::shared_ptr<Work> work_;
};

// Finds where a renewal is, and plans what comes next. The PIN is asked for once.
// @throws Error; with Exit::nothing_due when there is nothing to renew
[[nodiscard]] PlannedRenewal plan_renewal(const RenewalWishes& wishes, const CardChoice& choice,
                                          PinSource& pin, Authority& authority);

} // namespace zvhost
