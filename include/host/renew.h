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

    // File that holds a certificate that has come already (PEM, DER or a PKCS#7 bundle); empty: none. It need not answer
    // this renewal's request.
    [[nodiscard]] virtual std::string at_hand() { return {}; }
    // Hands a request over and gives the file that holds the answer; empty when it has not come yet. The card is not used
    // meanwhile, however long it takes.
    //
    // @param request  its file: base64 of a CMS message (RFC 5652) that the old key signed, a PKCS#10 request (RFC 2986) in it
    // @throws Error where the authority cannot be asked or refuses; the pair waits, the same renewal again asks again
    [[nodiscard]] virtual std::string ask(const std::string& request) = 0;
};

// What is wanted of a renewal. The request's file and the certificate's backup have usual names where none is given.
struct RenewalWishes {
    RequestWishes request;   // `out`: new file for the request, or the one that an earlier run made
    bool remove_old = false; // the old certificate and its keys, once the new one is proved
    std::string replace; // CKA_ID of what goes; empty: found from the request, or remembered by this computer
    std::string backup;  // new file for the old certificate
    std::vector<std::string> accept; // of accepted_reasons()
};

// How far a renewal came.
struct Renewal {
    CardFacts card;
    Kind kind = Kind::signature;
    bool done = false; // false: it waits for the authority's certificate
    std::string pair;
    std::string request;                // its file
    std::optional<Installed> installed; // in this run
    std::optional<bool> signed_with;    // the new key, tried in this run: signed; false: it was compared
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

    // What is done to the card next; for later steps see the notices. Where the card says that it has no room for both
    // certificates, and the old one is to go, that goes first.
    [[nodiscard]] const Plan& plan() const;
    // Goes on to the end, or until the authority's certificate is waited for. Once. The steps are numbered over the whole
    // renewal, with those that earlier runs did.
    //
    // @return `done` false when the certificate has not come: the pair waits on the card, its request is in its file
    // @throws Error, which says what is on the card then; also where `progress` cancels, between two steps. A certificate that
    //         went first is stored back when the new one cannot be stored; a pair that was made stays. The same renewal,
    //         planned again, goes on from there
    [[nodiscard]] Renewal apply(Progress& progress);

  private:
    std::shared_ptr<Work> work_;
};

// Opens the card, finds where a renewal is, and plans what comes next. The PIN is asked for once; nothing is changed.
//
// @param authority  is asked for what is at hand already; it has to live as long as the plan
// @throws Error with Exit::nothing_due when there is nothing to renew, Exit::refused for what would go wrong on the card or
//         for an answer that is none, Exit::failed when the card cannot be read
[[nodiscard]] PlannedRenewal plan_renewal(const RenewalWishes& wishes, const CardChoice& choice,
                                          PinSource& pin, Authority& authority);

} // namespace zvhost
