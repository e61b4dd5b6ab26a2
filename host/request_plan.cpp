#include "host/request_plan.h"

#include "host/advice.h"
#include "host/error.h"
#include "zvRenew.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <ctime>

namespace zvhost {
namespace {

Advice say_subject() {
    return {"subject", "Give the subject of the request with --subject."};
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

// A certificate with its key that the library's lists lack though they have room: reading it failed.
std::string unread_certificate(const RequestWishes& wishes, const Inventory& inventory,
                               const CardView& view) {
    if (inventory.certificates.size() + inventory.unreadable >= ZV_LIST_ENTRIES - 1) return {};
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
        throw Error(
            Exit::failed, fmt::format("The certificate {} is on the card, but could not be read.", id),
            Advice{"repeat", "Leave the card in the reader and run the same command again, or name another "
                             "certificate with --certificate ID."});
    const CertificateRecord* found = wishes.certificate.empty()
                                         ? inventory.current(wishes.kind)
                                         : inventory.find(wishes.kind, wishes.certificate);
    if (found != nullptr) return *found;
    const std::string id = wishes.certificate.empty() ? "" : " " + wishes.certificate;
    throw Error(Exit::refused,
                fmt::format("There is no {} certificate{} on the card.", kind_name(wishes.kind), id),
                Advice{"list", "See what there is with: zvrenew list"});
}

Error not_due(const CertificateRecord& old, int days) {
    const long left = days_until(old.ends, std::time(nullptr));
    Error stop(
        Exit::nothing_due,
        fmt::format("Nothing to do: the {} certificate {} ends on {}, in {} days.", kind_name(old.kind),
                    old.id, day_of(old.ends), left),
        Advice{"force",
               fmt::format("It is due {} days before. To renew it now all the same, give --force.", days),
               {{"due_in_days", left - days}}});
    stop.found = NotDue{old.id, old.ends, left};
    return stop;
}

void stop_unless_due(const RequestWishes& wishes, const CertificateRecord& old) {
    if (!wishes.force && !ends_within(old.ends, wishes.days, std::time(nullptr)))
        throw not_due(old, wishes.days);
}

// A request for a services card's own certificate leaves these out.
std::string why_not_services(const DistinguishedName& subject) {
    for (const char* name : {"title", "pseudonym"})
        if (!subject.value(name).empty())
            return fmt::format("a request of a services card does not carry {}", name);
    return {};
}

DistinguishedName requestable(DistinguishedName subject, Kind kind, const char* whose) {
    std::string reason = subject.why_not_requestable();
    if (reason.empty() && kind == Kind::services) reason = why_not_services(subject);
    if (!reason.empty())
        throw Error(Exit::refused, fmt::format("{} cannot go into a request: {}.", whose, reason),
                    say_subject());
    return subject;
}

DistinguishedName subject_of(const CertificateRecord& old) {
    const bool cut = old.subject_text.size() >= ZV_RECORD_NAME_SIZE - 1;
    const std::string begin = old.subject.oid_form().substr(0, old.subject.oid_form().find('=') + 1);
    const bool whole = old.kind != Kind::services && !cut && old.subject_text.starts_with(begin);
    if (!old.subject_exact && !whole)
        throw Error(Exit::refused, "The subject of the certificate cannot be read whole.", say_subject());
    return requestable(old.subject, old.kind, "The subject of the certificate");
}

[[noreturn]] void stop_none_free(Kind kind) {
    const std::vector<std::string> ids = identifiers_of(kind);
    throw Error(Exit::refused,
                fmt::format("No identifier is free for a new {} key: {} and {} are taken.", kind_name(kind),
                            fmt::join(ids.begin(), ids.end() - 1, ", "), ids.back()),
                free_an_identifier(kind));
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
        throw Error(Exit::refused,
                    fmt::format("The certificate {} is not the services card's own.", plan.old.id));
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
        throw Error(Exit::refused, fmt::format("The pair {} is not on the card whole.", plan.pair));
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
        throw Error(Exit::refused, fmt::format("The pair {} cannot sign its request.", plan.pair),
                    leave_to_card_software(plan.pair));
}

void refuse_ambiguous(const std::string& pair, const CardView& view) {
    if (pair.size() > ZV_PENDING_LABEL_MAX)
        throw Error(Exit::refused, fmt::format("The identifier {} is too long to be worked with.", pair));
    if (const auto others = view.others_containing(pair); !others.empty())
        throw Error(
            Exit::refused,
            fmt::format("The identifier {} is part of {} on the card: another key could be taken for the "
                        "new one.",
                        pair, fmt::join(others, ", ")));
}

} // namespace

void check_wishes(const RequestWishes& wishes) {
    if (wishes.kind == Kind::services && wishes.new_pair)
        throw Error(Exit::refused, "A services card keeps its own keys: there is no new pair to make.",
                    Advice{"without-new-pair", "Repeat the request without --new-pair."});
}

std::optional<DistinguishedName> given_subject(const RequestWishes& wishes) {
    if (wishes.subject.empty()) return std::nullopt;
    return requestable(DistinguishedName::from_user(wishes.subject), wishes.kind, "The subject");
}

RequestPlan plan_request(const RequestWishes& wishes, const Inventory& inventory, const CardView& view,
                         std::optional<DistinguishedName> subject) {
    RequestPlan plan;
    plan.old = certificate_to_renew(wishes, inventory, view);
    stop_unless_due(wishes, plan.old);
    plan.subject = subject ? std::move(*subject) : subject_of(plan.old);
    if (view.find(CKO_PRIVATE_KEY, plan.old.id) == nullptr)
        throw Error(Exit::refused,
                    fmt::format("The key of the certificate {} is not on the card.", plan.old.id));
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

} // namespace zvhost
