#include "cli/install_plan.h"

#include "cli/outcome.h"
#include "zvRenew.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace cli {
namespace {

// Storing a signature certificate with deletion takes this one away too, and nothing puts it back.
constexpr const char* authority_id = "Korvalenta Firma Dig";

X509* certificate_with(const std::vector<Certificate>& certificates, const Bytes& modulus) {
    const auto found = std::find_if(certificates.begin(), certificates.end(),
                                    [&](const Certificate& one) { return modulus_of(*one) == modulus; });
    return found == certificates.end() ? nullptr : found->get();
}

struct Match {
    WaitingPair pair;
    X509* certificate;
};

std::string ids(const std::vector<WaitingPair>& pairs) {
    std::vector<std::string> list;
    list.reserve(pairs.size());
    for (const WaitingPair& pair : pairs)
        list.push_back(pair.id);
    return fmt::format("{}", fmt::join(list, ", "));
}

void refuse_what_is_there(const IssuedFiles& files, const Inventory& inventory, const CardView& view) {
    for (const CertificateRecord& record : inventory.certificates) {
        for (const Certificate& certificate : files.certificates)
            if (view.certificate(record.id, der_of(*certificate)) != nullptr)
                throw Stop(Exit::refused,
                           fmt::format("The certificate is on the card already, as {}.", record.id));
    }
}

// A services card's own pair takes a new certificate also when the mark of its request is not there.
std::vector<WaitingPair> pairs_to_serve(const Inventory& inventory) {
    std::vector<WaitingPair> pairs = inventory.waiting;
    if (inventory.own_pair) pairs.push_back({Kind::services, own_pair_id});
    return pairs;
}

Match match_pair(const IssuedFiles& files, const Inventory& inventory, const CardView& view) {
    const std::vector<WaitingPair> pairs = pairs_to_serve(inventory);
    if (pairs.empty())
        throw Stop(Exit::refused, "No pair on the card waits for a certificate.",
                   Advice{"list", "See what is on the card with: zvrenew list"});
    for (const WaitingPair& pair : pairs) {
        const Bytes key = view.modulus(pair.id);
        if (key.empty() || (!files.request_key.empty() && key != files.request_key)) continue;
        if (X509* certificate = certificate_with(files.certificates, key)) return {pair, certificate};
    }
    throw Stop(Exit::refused,
               fmt::format("The certificate is for another key than what can take one on the card ({}).",
                           ids(pairs)),
               Advice{"other-card", "Install it on the card whose request it answers."});
}

std::optional<CertificateRecord> certificate_to_replace(const InstallOptions& options,
                                                        const Inventory& inventory, Kind kind) {
    if (options.replace.empty()) {
        const CertificateRecord* current = inventory.current(kind);
        return current == nullptr ? std::nullopt : std::optional(*current);
    }
    if (const CertificateRecord* named = inventory.find(kind, options.replace)) return *named;
    throw Stop(Exit::refused,
               fmt::format("There is no {} certificate {} on the card.", kind_name(kind), options.replace),
               Advice{"whole-identifier", "Give an identifier as zvrenew list shows it, whole."});
}

// Keys are looked up, and objects removed, by whether their identifier contains a text.
void refuse_ambiguous(const InstallPlan& plan, const CardView& view, bool remove_old) {
    if (plan.pair.size() > ZV_PENDING_LABEL_MAX)
        throw Stop(Exit::refused, fmt::format("The identifier {} is too long to be worked with.", plan.pair));
    if (const auto others = view.others_containing(plan.pair); !others.empty())
        throw Stop(Exit::refused,
                   fmt::format("The identifier {} is part of {} on the card: another key could get the "
                               "certificate.",
                               plan.pair, fmt::join(others, ", ")));
    if (!remove_old || !plan.old) return;
    if (const auto others = view.others_containing(plan.old->id); !others.empty())
        throw Stop(Exit::refused,
                   fmt::format("The identifier {} is part of {} on the card, which would be removed with it.",
                               plan.old->id, fmt::join(others, ", ")),
                   Advice{"without-remove-old", "Install without --remove-old."});
}

std::string pem_on_card(const CardView& view, const std::string& id) {
    std::string pem;
    for (const CardObject* object : view.certificates(id))
        if (const Certificate certificate = certificate_from(object->value)) pem += pem_of(*certificate);
    return pem;
}

void plan_removal(InstallPlan& plan, const CardView& view) {
    plan.removed.push_back(plan.old->id);
    if (plan.kind != Kind::signature || view.find(CKO_CERTIFICATE, authority_id) == nullptr) return;
    plan.removed.emplace_back(authority_id);
    plan.backup += pem_on_card(view, authority_id);
}

} // namespace

IssuedFiles read_issued_files(const InstallOptions& options) {
    IssuedFiles files{certificates_in_file(options.certificate_file), {}};
    if (options.request_file.empty()) return files;
    files.request_key = modulus_of_request(read_file(options.request_file, "The request"));
    if (files.request_key.empty())
        throw Stop(Exit::refused, fmt::format("There is no request in {}.", options.request_file));
    if (certificate_with(files.certificates, files.request_key) == nullptr)
        throw Stop(Exit::refused,
                   fmt::format("The certificate in {} is for another key than the request in {}.",
                               options.certificate_file, options.request_file));
    return files;
}

InstallPlan plan_install(const InstallOptions& options, const IssuedFiles& files, const Inventory& inventory,
                         const CardView& view) {
    refuse_what_is_there(files, inventory, view);
    const Match match = match_pair(files, inventory, view);
    if (const std::string reason = why_not_storable(*match.certificate); !reason.empty())
        throw Stop(Exit::refused, fmt::format("The certificate cannot be stored: {}.", reason));
    InstallPlan plan;
    plan.certificate = der_of(*match.certificate);
    plan.pair = match.pair.id;
    plan.kind = match.pair.kind;
    plan.old = certificate_to_replace(options, inventory, plan.kind);
    refuse_ambiguous(plan, view, options.remove_old);
    if (!plan.old) return plan;
    plan.backup = pem_on_card(view, plan.old->id);
    if (plan.backup.empty())
        throw Stop(Exit::refused,
                   fmt::format("The certificate {} cannot be read from the card.", plan.old->id));
    if (options.remove_old) plan_removal(plan, view);
    return plan;
}

} // namespace cli
