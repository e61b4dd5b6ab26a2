#pragma once

#include "host/kept_pin.h"
#include "host/remove.h"
#include "host/renew.h"
#include "host/standing.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zvhost {

// A renewal at work: what it found, what comes next and what it did.
class PlannedRenewal::Work {
  public:
    Work(RenewalWishes wishes, CardChoice choice, PinSource& pin, Authority& authority)
        : wishes_(std::move(wishes)), choice_(std::move(choice)), pin_(pin), authority_(authority) {}

    void plan();
    [[nodiscard]] const Plan& seen() const { return seen_; }
    [[nodiscard]] Renewal apply(Progress& shown);

  private:
    // The card, as it was opened for the first look; opened anew once that was used.
    [[nodiscard]] OpenedCard take_card();

    // What comes next.
    void plan_next();
    [[nodiscard]] bool plan_answer(const std::string& file);
    void plan_installation(const std::string& file);
    void plan_with(const InstallWishes& wishes);
    [[nodiscard]] bool plan_certificate_first();
    void plan_request();
    void plan_waiting();
    void plan_rest(const std::string& pair);
    void plan_removal(const std::string& old);
    void plan_unmarking();
    [[nodiscard]] InstallWishes install_wishes() const;
    [[nodiscard]] std::string old_of(const std::string& pair) const;
    void advise_on_kept(std::vector<Advice>& advice, const std::string& new_one) const;

    // Doing it.
    [[nodiscard]] int steps() const;
    [[nodiscard]] int steps_done() const;
    [[nodiscard]] Renewal go_on(Progress& progress);
    void make_request(Progress& progress);
    [[nodiscard]] bool hand_over(Progress& progress);
    void install(Progress& progress);
    void remove(Progress& progress);
    void unmark(Progress& progress);
    void remember() const;
    void forget() const;
    void stop_if_cancelled(Progress& progress) const;
    [[nodiscard]] Error advised(Error error) const;
    [[nodiscard]] Renewal told() const;

    [[nodiscard]] Kind kind() const { return wishes_.request.kind; }

    RenewalWishes wishes_;
    CardChoice choice_;
    KeptPin pin_;
    Authority& authority_;
    std::optional<OpenedCard> opened_;
    Standing standing_;
    std::optional<PlannedRequest> request_;
    std::optional<PlannedInstall> install_;
    std::optional<PlannedRemoval> removal_;
    std::optional<Installed> installed_;
    std::vector<Advice> left_;        // of what an installation before this run left
    std::optional<bool> signed_with_; // the key of a certificate that was on the card already
    bool first_ = false;      // the old certificate goes before the new one is stored, its keys at the end
    bool lacks_room_ = false; // for both certificates
    bool unmarks_ = false;    // the mark of a request goes
    bool changed_ = false;    // the card, by this run
    std::string pair_;
    std::string answer_; // file of the authority's certificate
    std::string removed_;
    std::string backup_;
    bool finished_ = false; // the new certificate is on the card
    Plan seen_;
};

} // namespace zvhost
