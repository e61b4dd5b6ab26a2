#include "host/foreseen.h"
#include "host/planned_changes.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace zvhost {
namespace {

// What a plan takes from the card under one identifier, now or in a later step.
struct Loss {
    std::string id;
    std::time_t ends = 0;
    bool certificate = false;
    bool keys = false;
    bool waited = false; // for a certificate
};

const Value* value_of(const Sentence& sentence, const char* name) {
    for (const auto& [known, value] : sentence.values)
        if (known == name) return &value;
    return nullptr;
}

std::string id_in(const Sentence& sentence) {
    const Value* value = value_of(sentence, "id");
    const auto* id = value == nullptr ? nullptr : std::get_if<std::string>(value);
    return id == nullptr ? "" : *id;
}

std::time_t end_in(const Sentence& sentence) {
    const Value* value = value_of(sentence, "ends");
    const auto* ends = value == nullptr ? nullptr : std::get_if<Moment>(value);
    return ends == nullptr ? 0 : ends->time;
}

// The certificate of that identifier goes with its keys, though the plan does not have them all.
bool goes_whole(const Plan& plan, const std::string& id) {
    return std::any_of(plan.notices.begin(), plan.notices.end(), [&](const Sentence& one) {
        return (one.id == REMOVES_LATER || one.id == CERTIFICATE_GOES_FIRST) && id_in(one) == id;
    });
}

Loss& loss_under(std::vector<Loss>& losses, const std::string& id) {
    for (Loss& loss : losses)
        if (loss.id == id) return loss;
    losses.push_back({id});
    return losses.back();
}

void add_removed(std::vector<Loss>& losses, const Change& change) {
    Loss& loss = loss_under(losses, change.id);
    if (change.what == ObjectClass::certificate && !loss.certificate) {
        loss.certificate = true;
        loss.ends = change.ends;
    }
    loss.keys = loss.keys || change.what != ObjectClass::certificate;
    loss.waited = loss.waited || change.why.id == "why-pair-discarded";
}

std::vector<Loss> losses_of(const Plan& plan) {
    std::vector<Loss> losses;
    for (const Change& change : plan.changes)
        if (change.action == Action::remove && change.what != ObjectClass::data) add_removed(losses, change);
    for (const Sentence& notice : plan.notices) {
        const std::string id = id_in(notice);
        if (id.empty() || !goes_whole(plan, id)) continue;
        Loss& loss = loss_under(losses, id);
        loss.certificate = loss.keys = true;
        if (loss.ends == 0) loss.ends = end_in(notice);
    }
    return losses;
}

Sentence told(const Loss& loss) {
    Values about = {{"id", loss.id}};
    if (!loss.certificate) return {loss.waited ? "plainly-waiting-removed" : "plainly-keys-removed", about};
    std::string which = loss.keys ? "plainly-removed-with-keys" : "plainly-removed";
    if (loss.ends != 0)
        about.emplace_back("ends", Moment{loss.ends});
    else
        which += "-undated";
    return {which, about};
}

auto matching(Action action, ObjectClass what) {
    return [=](const Change& change) { return change.action == action && change.what == what; };
}

bool any(const Plan& plan, Action action, ObjectClass what) {
    return std::any_of(plan.changes.begin(), plan.changes.end(), matching(action, what));
}

// What is made of a class may get another identifier than was foreseen.
bool is_like(const Change& one, const Change& other) {
    return matching(one.action, one.what)(other) && (one.action != Action::remove || one.id == other.id);
}

auto count_like(const Plan& plan, const Change& change) {
    return std::count_if(plan.changes.begin(), plan.changes.end(),
                         [&](const Change& one) { return is_like(one, change); });
}

bool is_foreseen(const Change& change, const Plan& plan, const Plan& foreseen) {
    if (change.action == Action::remove && goes_whole(foreseen, change.id)) return true;
    return count_like(plan, change) <= count_like(foreseen, change);
}

bool loses(const Plan& plan, const std::string& id) {
    const std::vector<Loss> losses = losses_of(plan);
    return std::any_of(losses.begin(), losses.end(),
                       [&](const Loss& one) { return one.id == id && one.certificate && one.keys; });
}

std::vector<Sentence> deeds_of(const Plan& plan) {
    std::vector<Sentence> sentences;
    const auto tell = [&](Action action, ObjectClass what, const char* id) {
        if (any(plan, action, what)) sentences.emplace_back(id, Values{});
    };
    tell(Action::create, ObjectClass::private_key, "plainly-keys-made");
    tell(Action::create, ObjectClass::certificate, "plainly-certificate-stored");
    tell(Action::create, ObjectClass::data, "plainly-marked");
    tell(Action::remove, ObjectClass::data, "plainly-unmarked");
    const std::vector<Loss> losses = losses_of(plan);
    std::transform(losses.begin(), losses.end(), std::back_inserter(sentences), told);
    if (sentences.empty()) return {{"plainly-nothing-changed", {}}};
    if (losses.empty()) sentences.emplace_back("plainly-nothing-removed", Values{});
    return sentences;
}

} // namespace

bool goes_beyond(const Plan& plan, const Plan& foreseen) {
    const auto beyond = [&](const Change& change) { return !is_foreseen(change, plan, foreseen); };
    const auto later = [&](const Sentence& notice) {
        const std::string id = id_in(notice);
        return !id.empty() && goes_whole(plan, id) && !loses(foreseen, id);
    };
    return std::any_of(plan.changes.begin(), plan.changes.end(), beyond) ||
           std::any_of(plan.notices.begin(), plan.notices.end(), later);
}

std::vector<Sentence> told_plainly(const Plan& plan) {
    std::vector<Sentence> sentences = deeds_of(plan);
    const auto expired = [](const Sentence& notice) { return notice.id == SIGNER_EXPIRED; };
    const auto found = std::find_if(plan.notices.begin(), plan.notices.end(), expired);
    if (found != plan.notices.end()) sentences.insert(sentences.begin(), *found);
    return sentences;
}

} // namespace zvhost
