#include "host/install_outcome.h"

#include "host/suitability.h"
#include "zvRenew.h"

#include <algorithm>
#include <utility>

namespace zvhost {
namespace {

Advice say_backup(const std::string& backup) {
    return {"backup", {"renewal-backup", {{"backup", backup}}}, {{"file", backup}}};
}

// What the card may have refused: it does not say why.
void advise_on_room(std::vector<Advice>& advice, const InstallPlan& plan) {
    if (plan.kind == Kind::services && plan.removed.empty() && plan.old && plan.old->on_card)
        advice.push_back({"remove-old", {"one-certificate-only", {}}});
    else if (plan.removed.empty() && plan.old && plan.old->on_card)
        advice.push_back(
            {"remove-old", {"old-makes-room", {{"id", plan.old->id}}}, {{"replace", plan.old->id}}});
    else if (plan.kind != Kind::services)
        advice.push_back({"make-room", {"make-room-first", {}}});
}

std::vector<Advice> advice_after_failure(const InstallPlan& plan, const CardNow& now) {
    if (!now.view) return {{"repeat", {"repeat-with-card", {}}}};
    if (now.view->certificate(plan.pair, plan.certificate) != nullptr)
        return {{"repeat", {"repeat-to-try-key", {}}}};
    if (now.view->find(CKO_PRIVATE_KEY, plan.pair) == nullptr) return {{"list", {"see-card", {}}}};
    const char* keys = plan.kind == Kind::services ? "repeat-keys-unchanged" : "repeat-pair-waits";
    const Values pair = {{"pair", plan.pair}};
    std::vector<Advice> advice{{"repeat", {keys, pair}, pair}};
    advise_on_room(advice, plan);
    return advice;
}

// Of a services card only the certificate goes, whose place the new one takes.
bool is_left(const InstallPlan& plan, const CardView& view, const std::string& id) {
    return plan.kind == Kind::services ? view.certificates(id).size() > 1 : view.has(id);
}

Error because_left(const std::vector<std::string>& left, const InstallPlan& plan, const CardNow& now,
                   const std::string& backup) {
    Error stop(Exit::failed,
               {plan.kind == Kind::services ? "stored-beside-another" : "stored-leaving",
                {{"pair", plan.pair}, {"left", left}}},
               Advice{"card-software", {"remove-with-card-software", {}}, {{"remove", left}}});
    stop.advice.push_back(say_backup(backup));
    stop.card = now.contents;
    stop.logged = true;
    return stop;
}

// The library says nothing of an object that would not go.
void refuse_leftovers(const InstallPlan& plan, const CardNow& now, const std::string& backup) {
    if (!now.view) return;
    std::vector<std::string> left = plan.removed;
    std::erase_if(left, [&](const std::string& id) { return !is_left(plan, *now.view, id); });
    if (!left.empty()) throw because_left(left, plan, now, backup);
}

OldCertificateNow old_now(const InstallPlan& plan) {
    if (!plan.old) return OldCertificateNow::none;
    if (!plan.removed.empty() || plan.first) return OldCertificateNow::removed;
    if (!plan.old->on_card) return OldCertificateNow::gone_before;
    return plan.kind == Kind::services ? OldCertificateNow::under_the_same_identifier
                                       : OldCertificateNow::beside;
}

Advice say_mark_left() {
    return {"mark", {"mark-left", {{"mark", ZV_PENDING_MARKER}}}};
}

Advice say_left(const std::vector<std::string>& left) {
    return {"card-software", {"left-of-removed", {{"left", left}}}, {{"remove", left}}};
}

} // namespace

void stop_install(OpenedCard& card, const InstallPlan& plan, const std::string& backup, Error stop) {
    const CardNow now = card_now(card);
    stop.card = now.contents;
    if (stop.advice.empty() || stop.advice.front().key != "signature-pin")
        for (Advice& advice : advice_after_failure(plan, now))
            stop.advice.push_back(std::move(advice));
    if (!backup.empty()) stop.advice.push_back(say_backup(backup));
    throw stop;
}

Installed installed_now(const OpenedCard& card, const InstallPlan& plan, const std::string& backup,
                        const Proof& proof) {
    const CardNow& now = proof.now;
    refuse_leftovers(plan, now, backup);
    Installed installed{card.facts(),
                        plan.kind,
                        plan.pair,
                        proof.signed_with,
                        plan.old ? plan.old->id : "",
                        old_now(plan),
                        plan.removed,
                        plan.left,
                        !new_issuer(plan).empty(),
                        backup,
                        now.contents,
                        plan.kind == Kind::services && now.view && now.view->marked_pending(),
                        {}};
    if (installed.mark_left) installed.advice.push_back(say_mark_left());
    if (!plan.left.empty()) installed.advice.push_back(say_left(plan.left));
    return installed;
}

Error because_stored(OpenedCard& card, const IssuedFiles& files, const Inventory& inventory,
                     const CardView& view, const std::string& id) {
    Proof proof;
    for (const Certificate& certificate : files.certificates)
        if (view.certificate(id, certificate.der()) != nullptr)
            proof = prove_pair(card, id, certificate.der(), KeyPin::kept);
    if (!proof.reason.empty())
        return {Exit::failed,
                {"stored-already-unproved", {{"pair", id}, {"reason", std::vector{proof.reason}}}}};
    Error stop(Exit::refused,
               {proof.signed_with ? "stored-already" : "stored-already-compared", {{"pair", id}}});
    stop.found = AlreadyStored{id, proof.signed_with};
    std::vector<std::string> left;
    for (const RetiredPair& pair : inventory.retired)
        left.push_back(pair.id);
    if (!left.empty()) stop.advice.push_back(say_left(left));
    if (id == ZV_OWN_PAIR && view.marked_pending()) stop.advice.push_back(say_mark_left());
    return stop;
}

Error because_unproved(const Proof& proof) {
    Error stop(Exit::failed, {"stored-unproved", {{"reason", std::vector{proof.reason}}}});
    if (proof.advice) stop.advice.push_back(*proof.advice);
    return stop;
}

} // namespace zvhost
