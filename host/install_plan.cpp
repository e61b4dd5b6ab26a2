#include "host/install_plan.h"

#include "host/certificate_facts.h"
#include "host/error.h"
#include "host/old_certificate.h"
#include "host/planned_changes.h"
#include "host/read_file.h"
#include "host/removal.h"
#include "host/signed_request.h"
#include "host/suitability.h"
#include "zvRenew.h"

#include <algorithm>

namespace zvhost {
namespace {

// Of two that end in the same second the later one in the file.
bool ends_later(const Certificate& one, const Certificate* other) {
    return other == nullptr || end_of(*one) >= end_of(**other);
}

// A services card's old and new certificate have one key.
const Certificate* certificate_with(const std::vector<Certificate>& certificates, const Bytes& modulus) {
    const Certificate* found = nullptr;
    for (const Certificate& one : certificates)
        if (modulus_of(*one) == modulus && ends_later(one, found)) found = &one;
    return found;
}

struct Match {
    PendingPair pair;
    const Certificate* certificate;
};

std::vector<std::string> ids_of(const std::vector<PendingPair>& pairs) {
    std::vector<std::string> list;
    list.reserve(pairs.size());
    for (const PendingPair& pair : pairs)
        list.push_back(pair.id);
    return list;
}

// A services card's own pair takes a new certificate also when the mark of its request is not there.
std::vector<PendingPair> pairs_to_serve(const Inventory& inventory) {
    std::vector<PendingPair> pairs = inventory.pending;
    if (inventory.own_pair) pairs.push_back({Kind::services, ZV_OWN_PAIR});
    return pairs;
}

// Every private key without a certificate can take its own, also the one that a removal left.
std::vector<PendingPair> pairs_to_try(const Inventory& inventory, const CardView& view) {
    std::vector<PendingPair> pairs = pairs_to_serve(inventory);
    for (const std::string& id : view.identifiers())
        if (id != ZV_OWN_PAIR && view.find(CKO_PRIVATE_KEY, id) != nullptr && view.certificates(id).empty())
            pairs.push_back({kind_of_pair(id), id});
    return pairs;
}

std::optional<Match> match_one(const std::vector<PendingPair>& pairs, const IssuedFiles& files,
                               const CardView& view) {
    for (const PendingPair& pair : pairs) {
        const Bytes key = view.modulus(pair.id);
        if (key.empty() || (!files.request_key.empty() && key != files.request_key)) continue;
        const Certificate* certificate = certificate_with(files.certificates, key);
        if (certificate != nullptr && view.certificate(pair.id, certificate->der()) == nullptr)
            return Match{pair, certificate};
    }
    return std::nullopt;
}

Match match_pair(const IssuedFiles& files, const Inventory& inventory, const CardView& view) {
    if (const auto match = match_one(pairs_to_try(inventory, view), files, view)) return *match;
    const std::vector<PendingPair> pairs = pairs_to_serve(inventory);
    if (pairs.empty()) throw Error(Exit::refused, {"no-pair-waits", {}}, Advice{"list", {"see-card", {}}});
    throw Error(Exit::refused, {"certificate-of-other-key", {{"pairs", ids_of(pairs)}}},
                Advice{"other-card", {"install-on-its-card", {}}});
}

// Keys are looked up, and objects removed, by whether their identifier contains a text.
void refuse_ambiguous(const InstallPlan& plan, const CardView& view) {
    if (plan.pair.size() > ZV_PENDING_LABEL_MAX)
        throw Error(Exit::refused, {"identifier-too-long", {{"id", plan.pair}}});
    if (const auto others = view.others_containing(plan.pair); !others.empty())
        throw Error(Exit::refused, {"pair-inside-others", {{"id", plan.pair}, {"others", others}}});
}

} // namespace

IssuedFiles read_issued_files(const InstallWishes& wishes) {
    if (is_request(read_file(wishes.certificate_file, "file")))
        throw Error(Exit::refused, {"request-for-certificate", {{"file", wishes.certificate_file}}});
    IssuedFiles files{certificates_in_file(wishes.certificate_file), {}, {}};
    if (wishes.request_file.empty()) return files;
    const std::string request = read_file(wishes.request_file, "request");
    files.request_key = modulus_of_request(request);
    files.signer = signer_of_request(request);
    if (files.request_key.empty())
        throw Error(Exit::refused, {"no-request-in-file", {{"file", wishes.request_file}}});
    if (certificate_with(files.certificates, files.request_key) == nullptr)
        throw Error(Exit::refused, {"certificate-of-other-request",
                                    {{"file", wishes.certificate_file}, {"request", wishes.request_file}}});
    return files;
}

std::string stored_already(const IssuedFiles& files, const Inventory& inventory, const CardView& view) {
    if (match_one(pairs_to_serve(inventory), files, view)) return {};
    std::string found;
    const Certificate* last = nullptr;
    for (const Certificate& certificate : files.certificates)
        for (const std::string& id : view.identifiers())
            if (ends_later(certificate, last) && view.find(CKO_PRIVATE_KEY, id) != nullptr &&
                view.certificate(id, certificate.der()) != nullptr) {
                last = &certificate;
                found = id;
            }
    return found;
}

InstallPlan plan_install(const InstallWishes& wishes, const IssuedFiles& files, const OpenedCard& card,
                         const Inventory& inventory, const CardView& view) {
    const Match match = match_pair(files, inventory, view);
    if (const auto reason = why_not_storable(*match.certificate); !reason.empty())
        throw Error(Exit::refused, {"certificate-not-storable", {{"reason", std::vector<Sentence>{reason}}}});
    InstallPlan plan;
    plan.certificate = match.certificate->der();
    plan.pair = match.pair.id;
    plan.kind = match.pair.kind;
    plan.old =
        find_old({wishes, files, view, inventory.backups, card, plan.kind, plan.pair, plan.certificate});
    refuse_ambiguous(plan, view);
    refuse_doubled(view, {plan.pair});
    if (plan.old) plan_removal(plan, wishes, card.state.serial, view);
    if (plan.old && wishes.certificate_first)
        if (const CardObject* first = view.certificate(plan.old->id, plan.old->der)) plan.first = *first;
    refuse_doubled(view, plan.removed);
    refuse_worthless(wishes, plan, files, view);
    return plan;
}

std::vector<Sentence> notices_of(const InstallPlan& plan) {
    std::vector<Sentence> notices;
    const auto note = [&](const Sentence& sentence) { notices.push_back(sentence); };
    if (const Sentence issuer = new_issuer(plan); !issuer.empty()) note(issuer);
    if (plan.first) note({CERTIFICATE_GOES_FIRST, {{"id", plan.first->id}}});
    if (plan.removed.empty()) return notices;
    if (plan.kind == Kind::services) {
        note({"removing-certificate", {{"id", plan.pair}}});
        return notices;
    }
    note({"removing-with-keys", {{"id", plan.removed.front()}}});
    if (plan.removed.size() > 1) note({"removing-authority", {{"id", plan.removed[1]}}});
    return notices;
}

} // namespace zvhost
