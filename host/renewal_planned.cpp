#include "host/opened_plans.h"
#include "host/renewal.h"
#include "zvConstants.h"

#include <cstddef>
#include <variant>

namespace zvhost {
namespace {

// As far as the card says how much it has.
bool lacks_room(const Plan& plan) {
    std::size_t needed = 0;
    for (const Change& change : plan.changes)
        if (change.action == Action::create) needed += change.size;
    return plan.room && *plan.room < needed;
}

} // namespace

// It is not held while others, a person among them, are waited for.
void PlannedRenewal::Work::plan() {
    opened_.emplace(open_card(choice_, pin_, Use::changing));
    pin_.bind(opened_->state.serial);
    standing_ = find_standing(wishes_, *opened_);
    plan_next();
    opened_.reset();
}

OpenedCard PlannedRenewal::Work::take_card() {
    if (!opened_) return open_card(choice_, pin_, Use::changing);
    OpenedCard card = std::move(*opened_);
    opened_.reset();
    return card;
}

void PlannedRenewal::Work::plan_next() {
    seen_ = standing_.nothing;
    if (const std::string file = authority_.at_hand(); !file.empty() && plan_answer(file)) return;
    if (standing_.was_stored()) return plan_rest(standing_.remembered.pair);
    if (standing_.requested) return plan_waiting();
    plan_request();
}

// A file that answers an earlier renewal, whose certificate is due by now, is no answer.
bool PlannedRenewal::Work::plan_answer(const std::string& file) {
    try {
        plan_installation(file);
        return true;
    } catch (const Error& error) {
        const auto* stored = std::get_if<AlreadyStored>(&error.found);
        if (stored == nullptr) throw;
        if (standing_.due && stored->id == standing_.current) return false;
        left_ = error.advice;
        signed_with_ = stored->verified;
        plan_rest(stored->id);
        return true;
    }
}

InstallWishes PlannedRenewal::Work::install_wishes() const {
    const bool services = kind() == Kind::services;
    InstallWishes wishes;
    wishes.certificate_file = answer_;
    if (standing_.requested) wishes.request_file = wishes_.request.out;
    wishes.replace = wishes_.replace;
    wishes.remove_old = services && wishes_.remove_old;
    wishes.removed_later = !services && wishes_.remove_old;
    wishes.backup = wishes_.backup;
    wishes.accept = wishes_.accept;
    return wishes;
}

void PlannedRenewal::Work::plan_with(const InstallWishes& wishes) {
    install_.reset();
    try {
        install_.emplace(plan_install(wishes, [this] { return take_card(); }));
    } catch (Error& error) {
        if (std::get_if<AlreadyStored>(&error.found) == nullptr)
            error.advice.push_back(
                {"other-file", {"renewal-answer-kept", {{"file", answer_}}}, {{"file", answer_}}});
        throw;
    }
    seen_ = install_->plan();
}

void PlannedRenewal::Work::plan_installation(const std::string& file) {
    answer_ = file;
    plan_with(install_wishes());
    if (kind() == Kind::services) return;
    lacks_room_ = lacks_room(seen_);
    if (lacks_room_ && wishes_.remove_old && plan_certificate_first()) return;
    if (lacks_room_) seen_.notices.emplace_back("renewal-little-room", Values{});
    if (const std::string old = old_of(standing_.waiting); wishes_.remove_old && !old.empty())
        seen_.notices.push_back(standing_.removes_later(old));
}

// The old certificate makes room for the new one; its keys stay until that is proved, so that it can be stored back.
bool PlannedRenewal::Work::plan_certificate_first() {
    InstallWishes wishes = install_wishes();
    wishes.replace = old_of(standing_.waiting);
    wishes.certificate_first = true;
    first_ = standing_.certificate(wishes.replace) != nullptr;
    if (first_) plan_with(wishes);
    return first_;
}

void PlannedRenewal::Work::plan_request() {
    RequestWishes wishes = wishes_.request;
    wishes.force = wishes.force || !standing_.waiting.empty(); // what was begun is finished
    try {
        request_.emplace(zvhost::plan_request(wishes, [this] { return take_card(); }));
    } catch (Error& error) {
        if (error.exit == Exit::nothing_due && wishes_.remove_old)
            advise_on_kept(error.advice, standing_.current);
        throw;
    }
    seen_ = request_->plan();
    seen_.notices.emplace_back("renewal-asks-authority", Values{});
}

void PlannedRenewal::Work::plan_waiting() {
    seen_.notices.emplace_back("renewal-waits",
                               Values{{"pair", standing_.waiting}, {"file", wishes_.request.out}});
}

// What is to be done once the new certificate is on the card.
void PlannedRenewal::Work::plan_rest(const std::string& pair) {
    finished_ = true;
    pair_ = pair;
    if (kind() == Kind::services) return plan_unmarking();
    if (!wishes_.remove_old) return;
    if (const std::string old = old_of(pair); !old.empty()) plan_removal(old);
}

void PlannedRenewal::Work::plan_removal(const std::string& old) {
    opened_.reset(); // the removal opens the card itself
    RemovalWishes removal;
    removal.id = old;
    removal.backup = first_ && installed_ ? installed_->backup : wishes_.backup;
    removal_.emplace(zvhost::plan_removal(removal, choice_, pin_));
    seen_ = removal_->plan();
}

// A request that is answered is marked no longer; an installation that was broken off had no time for that.
void PlannedRenewal::Work::plan_unmarking() {
    unmarks_ = installed_ ? installed_->mark_left : standing_.marked;
    if (unmarks_ && !installed_)
        seen_.changes.push_back(
            {Action::remove, ObjectClass::data, {}, ZV_PENDING_MARKER, 0, {"why-mark-removed", {}}});
}

// The certificate that goes; empty where nothing says which.
std::string PlannedRenewal::Work::old_of(const std::string& pair) const {
    return wishes_.replace.empty() ? standing_.old_of(pair) : wishes_.replace;
}

// Certificates that a removal could still take.
void PlannedRenewal::Work::advise_on_kept(std::vector<Advice>& advice, const std::string& new_one) const {
    if (kind() == Kind::services) return;
    for (const Candidate& one : standing_.certified)
        if (one.id != new_one)
            advice.push_back({"remove", {"renewal-kept", {{"id", one.id}}}, {{"id", one.id}}});
}

} // namespace zvhost
