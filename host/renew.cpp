#include "host/renew.h"

#include "host/install_plan.h"
#include "host/journal_problem.h"
#include "host/numbered_steps.h"
#include "host/objects_removed.h"
#include "host/renewal.h"

#include <algorithm>
#include <memory>

namespace zvhost {

Renewal PlannedRenewal::Work::apply(Progress& shown) {
    NumberedSteps progress(shown, steps(), steps_done());
    try {
        return go_on(progress);
    } catch (const Error& error) {
        throw advised(error);
    }
}

// Of the whole renewal, with what earlier runs did: the request, the installation, and what becomes of the old one.
int PlannedRenewal::Work::steps() const {
    const bool removes = removal_ || (wishes_.remove_old && kind() != Kind::services && !finished_ &&
                                      !old_of(standing_.waiting).empty());
    return 1 + STEPS_OF_AN_INSTALLATION + (removes || unmarks_ ? 1 : 0);
}

int PlannedRenewal::Work::steps_done() const {
    if (request_) return 0;
    return finished_ ? 1 + STEPS_OF_AN_INSTALLATION : 1;
}

Renewal PlannedRenewal::Work::go_on(Progress& progress) {
    if (request_) make_request(progress);
    if (!install_ && !removal_ && !finished_ && !hand_over(progress)) return told();
    if (install_) install(progress);
    if (removal_) remove(progress);
    if (unmarks_) unmark(progress);
    forget();
    return told();
}

// What to do about a request or an installation by itself is not always what to do about a renewal.
Error PlannedRenewal::Work::advised(Error error) const {
    for (Advice& advice : error.advice) {
        if (advice.key == "new-pair") advice.says = {"renewal-new-pair", {{"pair", standing_.waiting}}};
        if (advice.key == "remove-old" && !answer_.empty())
            advice.says = {lacks_room_ && !wishes_.remove_old ? "renewal-needs-remove-old"
                                                              : "renewal-no-room",
                           {{"file", answer_}}};
    }
    // A later step that did nothing does not know of those before it.
    if (!changed_) return error;
    if (error.exit == Exit::refused) error.exit = Exit::failed;
    if (!error.card || error.card->untouched) error.card = standing_.now;
    return error;
}

// The request itself tells the journal.
void PlannedRenewal::Work::make_request(Progress& progress) {
    standing_.waiting = request_->pair();
    const MadeRequest made = request_->apply(progress);
    request_.reset();
    pair_ = made.pair;
    changed_ = true;
    standing_.note_request(made);
}

// False when the authority's certificate has not come yet.
bool PlannedRenewal::Work::hand_over(Progress& progress) {
    stop_if_cancelled(progress);
    pair_ = standing_.waiting;
    progress.rests();
    const std::string file = authority_.ask(wishes_.request.out);
    if (file.empty()) return false;
    plan_installation(file);
    return true;
}

void PlannedRenewal::Work::install(Progress& progress) {
    stop_if_cancelled(progress);
    installed_ = install_->apply(progress);
    install_.reset();
    standing_.note_stored(*installed_, old_of(installed_->pair));
    remember();
    changed_ = true;
    plan_rest(installed_->pair);
}

void PlannedRenewal::Work::remove(Progress& progress) {
    stop_if_cancelled(progress);
    const Removed removed = removal_->apply(progress);
    removal_.reset();
    removed_ = removed.id;
    backup_ = removed.backup;
    std::erase_if(installed_ ? installed_->advice : left_,
                  [](const Advice& one) { return one.key == "card-software"; });
    standing_.now = removed.now;
}

void PlannedRenewal::Work::unmark(Progress& progress) {
    progress.changing();
    progress.step(Step(Sentence{"step-unmark", {}}));
    OpenedCard card = open_card(choice_, pin_, Use::changing);
    const CardNow now = remove_mark(card);
    standing_.now = now.contents;
    if (!now.view || now.view->marked_pending()) return;
    const auto about_mark = [](const Advice& one) { return one.key == "mark"; };
    std::erase_if(left_, about_mark);
    if (installed_) std::erase_if(installed_->advice, about_mark);
}

void PlannedRenewal::Work::stop_if_cancelled(Progress& progress) const {
    if (!progress.cancelled()) return;
    Error error(Exit::failed, {"renewal-stopped", {}}, Advice{"repeat", {"renewal-again", {}}});
    error.about = standing_.card;
    error.card = standing_.now;
    throw Error(error);
}

// The renewal goes on also where the journal cannot be written.
void PlannedRenewal::Work::remember() const {
    note_journal(Journal().change(standing_.card_serial(),
                                  [&](RememberedCard& card) { card.set_renewal(standing_.remembered); }));
}

void PlannedRenewal::Work::forget() const {
    if (!installed_ && removed_.empty() && !finished_) return;
    note_journal(
        Journal().change(standing_.card_serial(), [&](RememberedCard& card) { card.end_renewal(kind()); }));
}

Renewal PlannedRenewal::Work::told() const {
    Renewal renewal;
    renewal.card = standing_.card;
    renewal.kind = kind();
    renewal.done = finished_;
    renewal.pair = pair_;
    renewal.request = wishes_.request.out;
    renewal.installed = installed_;
    renewal.signed_with = installed_ ? installed_->signed_with : signed_with_;
    renewal.removed = removed_;
    renewal.backup = backup_.empty() && installed_ ? installed_->backup : backup_;
    renewal.now = standing_.now;
    renewal.advice = installed_ ? installed_->advice : left_;
    if (finished_ && removed_.empty()) advise_on_kept(renewal.advice, pair_);
    return renewal;
}

PlannedRenewal::PlannedRenewal(std::shared_ptr<Work> work) : work_(std::move(work)) {}

const Plan& PlannedRenewal::plan() const {
    return work_->seen();
}

Renewal PlannedRenewal::apply(Progress& progress) {
    return work_->apply(progress);
}

PlannedRenewal plan_renewal(const RenewalWishes& wishes, const CardChoice& choice, PinSource& pin,
                            Authority& authority) {
    const auto work = std::make_shared<PlannedRenewal::Work>(wishes, choice, pin, authority);
    work->plan();
    return PlannedRenewal(work);
}

} // namespace zvhost
