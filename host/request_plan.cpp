#include "host/request_plan.h"

#include "host/advice.h"
#include "host/error.h"
#include "zvRenew.h"

#include <algorithm>
#include <ctime>

namespace zvhost {
namespace {

Advice say_subject() {
    return {"subject", {"give-subject", {}}};
}

bool is_listed(const Inventory& inventory, const std::string& id) {
    const auto& records = inventory.certificates;
    return std::any_of(records.begin(), records.end(), [&](const auto& record) { return record.id == id; });
}

// Other identifiers of a services card are in none of the library's lists.
bool is_of_kind(const std::string& id, Kind kind, bool services_card) {
    const bool known = std::any_of(std::begin(zv::KINDS), std::end(zv::KINDS), [&](const zv::KindRow& row) {
        return row.new_pair ? id.starts_with(row.series) : id == row.first_id;
    });
    return (known || !services_card) && kind_of_certificate(id, services_card) == kind;
}

// A certificate with its key that is in none of the lists: it cannot be read.
std::string unread_certificate(const RequestWishes& wishes, const Inventory& inventory,
                               const CardView& view) {
    for (const std::string& id : view.identifiers())
        if ((wishes.certificate.empty() || wishes.certificate == id) && !is_listed(inventory, id) &&
            is_of_kind(id, wishes.kind, inventory.own_pair) && !view.certificates(id).empty() &&
            view.find(CKO_PRIVATE_KEY, id) != nullptr)
            return id;
    return {};
}

CertificateRecord certificate_to_renew(const RequestWishes& wishes, const Inventory& inventory,
                                       const CardView& view) {
    if (const std::string id = unread_certificate(wishes, inventory, view); !id.empty())
        throw Error(Exit::failed, {"certificate-not-read", {{"id", id}}},
                    Advice{"repeat", {"repeat-or-other-certificate", {}}});
    const CertificateRecord* found = wishes.certificate.empty()
                                         ? inventory.current(wishes.kind)
                                         : inventory.find(wishes.kind, wishes.certificate);
    if (found != nullptr) return *found;
    throw Error(Exit::refused,
                {wishes.certificate.empty() ? "no-certificate-of-kind" : "no-certificate-named",
                 {{"kind", wishes.kind}, {"id", wishes.certificate}}},
                Advice{"list", {"see-list", {}}});
}

Error not_due(const CertificateRecord& old, int days) {
    const long left = days_until(old.ends, std::time(nullptr));
    Error stop(
        Exit::nothing_due,
        {"nothing-due", {{"kind", old.kind}, {"id", old.id}, {"ends", Moment{old.ends}}, {"days", left}}},
        Advice{"force", {"give-force", {{"days", long{days}}}}, {{"due_in_days", left - days}}});
    stop.found = NotDue{old.id, old.ends, left};
    return stop;
}

void stop_unless_due(const RequestWishes& wishes, const CertificateRecord& old) {
    if (!wishes.force && !ends_within(old.ends, wishes.days, std::time(nullptr)))
        throw not_due(old, wishes.days);
}

// A request for a services card's own certificate leaves these out.
Sentence why_not_services(const DistinguishedName& subject) {
    for (const char* name : {"title", "pseudonym"})
        if (!subject.value(name).empty()) return {"not-of-services-card", {{"name", name}}};
    return {};
}

Error unfit(const char* which, const Sentence& reason) {
    return {Exit::refused, {which, {{"reason", std::vector{reason}}}}, say_subject()};
}

// `which` is the sentence for a subject that is not.
DistinguishedName requestable(DistinguishedName subject, Kind kind, const char* which) {
    if (const auto reason = subject.why_not_requestable(); !reason.empty()) throw unfit(which, reason);
    if (const auto reason = why_not_services(subject); kind == Kind::services && !reason.empty())
        throw unfit(which, reason);
    return subject;
}

[[noreturn]] void stop_none_free(Kind kind) {
    throw Error(Exit::refused, {"none-free", series_of(kind)}, free_an_identifier(kind));
}

// The library calls an identifier free when no public key has it. A certificate or private key under it would
// be renewed in place of a new pair, so those count here too.
std::string free_identifier(Kind kind, const Inventory& inventory, const CardView& view) {
    const Proposal& proposal = inventory.next[kind];
    if (proposal.none_free) stop_none_free(kind);
    if (!proposal.id.empty() && !view.has(proposal.id)) return proposal.id;
    for (const std::string& id : identifiers_of(kind))
        if (!view.has(id)) return id;
    stop_none_free(kind);
}

void take_own_pair(RequestPlan& plan, const CardView& view) {
    if (plan.old.id != ZV_OWN_PAIR)
        throw Error(Exit::refused, {"not-own-certificate", {{"id", plan.old.id}}});
    plan.pair = ZV_OWN_PAIR;
    plan.reuse = true;
    plan.pending_key = view.modulus(plan.pair);
}

void take_new_pair(RequestPlan& plan, const RequestWishes& wishes, const Inventory& inventory,
                   const CardView& view) {
    const PendingPair* pending = inventory.pending_pair(wishes.kind);
    plan.pair = pending != nullptr ? pending->id : free_identifier(wishes.kind, inventory, view);
    if (pending == nullptr) return;
    plan.discard = wishes.new_pair;
    plan.reuse = !wishes.new_pair;
    if (view.find(CKO_PRIVATE_KEY, plan.pair) == nullptr)
        throw Error(Exit::refused, {"pair-not-whole", {{"pair", plan.pair}}});
    plan.pending_key = view.modulus(plan.pair);
}

std::vector<std::string> single_keys(const CardView& view, const std::string& pair) {
    std::vector<std::string> found;
    for (const Held& held : view.contents().held)
        if (held.certificates == 0 && held.public_key != held.private_key && held.id != pair)
            found.push_back(held.id);
    return found;
}

// A new pair is likely to be as those that are there.
std::string certified_that_wants_pin(const RequestWishes& wishes, const Inventory& inventory,
                                     const CardView& view) {
    for (const std::string& id : view.identifiers())
        if (is_of_kind(id, wishes.kind, inventory.own_pair) && !view.certificates(id).empty() &&
            view.wants_pin(id))
            return id;
    return {};
}

// The pair that is there would fail to sign its request, and one made in its place as well.
void refuse_unable(const RequestPlan& plan, const CardView& view) {
    if (view.wants_pin(plan.pair))
        throw Error(Exit::refused, {"pair-cannot-sign", {{"pair", plan.pair}}},
                    leave_to_card_software(plan.pair));
}

void refuse_ambiguous(const std::string& pair, const CardView& view) {
    if (pair.size() > ZV_PENDING_LABEL_MAX)
        throw Error(Exit::refused, {"identifier-too-long", {{"id", pair}}});
    if (const auto others = view.others_containing(pair); !others.empty())
        throw Error(Exit::refused, {"identifier-inside-others", {{"id", pair}, {"others", others}}});
}

} // namespace

void check_wishes(const RequestWishes& wishes) {
    if (wishes.kind == Kind::services && wishes.new_pair)
        throw Error(Exit::refused, {"services-keep-keys", {}},
                    Advice{"without-new-pair", {"request-without-new-pair", {}}});
}

std::optional<DistinguishedName> given_subject(const RequestWishes& wishes) {
    if (wishes.subject.empty()) return std::nullopt;
    return requestable(DistinguishedName::from_user(wishes.subject), wishes.kind, "given-subject-unfit");
}

RequestPlan plan_request(const RequestWishes& wishes, const Inventory& inventory, const CardView& view,
                         std::optional<DistinguishedName> subject) {
    RequestPlan plan;
    plan.old = certificate_to_renew(wishes, inventory, view);
    stop_unless_due(wishes, plan.old);
    plan.subject =
        subject ? std::move(*subject) : requestable(plan.old.subject, plan.old.kind, "old-subject-unfit");
    if (view.find(CKO_PRIVATE_KEY, plan.old.id) == nullptr)
        throw Error(Exit::refused, {"key-not-there", {{"id", plan.old.id}}});
    if (wishes.kind == Kind::services)
        take_own_pair(plan, view);
    else
        take_new_pair(plan, wishes, inventory, view);
    refuse_ambiguous(plan.pair, view);
    refuse_doubled(view, {plan.pair, plan.old.id});
    refuse_unable(plan, view);
    plan.left = single_keys(view, plan.pair);
    plan.signer_wants_pin = view.wants_pin(plan.old.id);
    plan.wants_pin = certified_that_wants_pin(wishes, inventory, view);
    return plan;
}

std::vector<Sentence> notices_of(const RequestPlan& plan) {
    std::vector<Sentence> notices;
    const auto note = [&](const Sentence& sentence) { notices.push_back(sentence); };
    if (plan.old.ends < std::time(nullptr)) note({SIGNER_EXPIRED, {{"id", plan.old.id}}});
    if (plan.old.kind == Kind::services) {
        note({"own-keys-stay", {{"pair", plan.pair}}});
        return notices;
    }
    if (plan.signer_wants_pin) note({"signer-wants-pin", {{"key", plan.old.id}}});
    if (plan.reuse) {
        note({"pair-used-again", {{"pair", plan.pair}}});
        return notices;
    }
    if (plan.discard) note({"pair-discarded", {{"pair", plan.pair}}});
    if (!plan.wants_pin.empty()) note({"pair-may-want-pin", {{"key", plan.wants_pin}, {"pair", plan.pair}}});
    return notices;
}

} // namespace zvhost
