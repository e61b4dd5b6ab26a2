#include "host/standing.h"

#include "host/certificate.h"
#include "host/certificate_facts.h"
#include "host/inventory.h"
#include "host/planned_changes.h"
#include "host/read_file.h"
#include "host/signed_request.h"
#include "zvConstants.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <utility>

namespace zvhost {
namespace {

constexpr const char* RENEWAL_STORED = "stored"; // the new certificate is on the card, and was proved

bool is_a_file(const std::string& file) {
    std::error_code none;
    return !file.empty() && std::filesystem::is_regular_file(file, none);
}

std::string absolute(const std::string& file) {
    std::error_code none;
    return std::filesystem::absolute(file, none).string();
}

std::time_t end_of_der(const Bytes& der) {
    const Certificate certificate = certificate_from(der);
    return certificate ? end_of(*certificate).value_or(0) : 0;
}

std::string waiting_pair(const Inventory& inventory, Kind kind) {
    if (kind == Kind::services) return inventory.services_pending ? ZV_OWN_PAIR : "";
    const PendingPair* pending = inventory.pending_pair(kind);
    return pending == nullptr ? "" : pending->id;
}

// From the card itself: a list that lacks one would leave it there unsaid.
void add_certified(Standing& standing, const CardView& view) {
    for (const CardObject& object : view.objects()) {
        if (object.type != CKO_CERTIFICATE || view.find(CKO_PRIVATE_KEY, object.id) == nullptr ||
            kind_of_certificate(object.id, standing.card.services_card) != standing.kind)
            continue;
        const Bytes der = without_padding(object.value);
        standing.certified.push_back({object.id, serial_of(der), der, end_of_der(der)});
    }
}

void take_inventory(Standing& standing, const Inventory& inventory, int days) {
    standing.waiting = waiting_pair(inventory, standing.kind);
    if (const CertificateRecord* current = inventory.current(standing.kind)) {
        standing.current = current->id;
        standing.due = ends_within(current->ends, days, std::time(nullptr));
    }
}

// Their certificates are in the backups by which they are known.
void add_retired(Standing& standing, const Inventory& inventory) {
    for (const RetiredPair& pair : inventory.retired)
        for (const Backup& backup : inventory.backups)
            if (backup.file == pair.backup) {
                const Bytes der = backup.certificate();
                standing.retired.push_back(
                    {pair.id, der.empty() ? "" : serial_of(der), der, end_of_der(der)});
            }
}

// @return the key that it is for; empty where there is none
Bytes read_request(Standing& standing, const std::string& file) {
    if (!is_a_file(file)) return {};
    const std::string request = read_file(file, "file");
    standing.signer = signer_of_request(request);
    return modulus_of_request(request);
}

void take_remembered(Standing& standing) {
    const RememberedCard remembered = Journal().card(standing.card_serial());
    if (const RememberedRenewal* renewal = remembered.renewal(standing.kind)) standing.remembered = *renewal;
}

} // namespace

std::string Standing::card_serial() const {
    return card.state ? card.state->serial : "";
}

const Candidate* Standing::certificate(const std::string& id) const {
    const auto found =
        std::find_if(certified.begin(), certified.end(), [&](const Candidate& one) { return one.id == id; });
    return found == certified.end() ? nullptr : &*found;
}

std::string Standing::serial_under(const std::string& id) const {
    const Candidate* found = certificate(id);
    return found == nullptr ? "" : found->serial;
}

std::time_t Standing::end_under(const std::string& id) const {
    for (const auto* list : {&certified, &retired})
        for (const Candidate& one : *list)
            if (one.id == id) return one.ends;
    return 0;
}

Sentence Standing::removes_later(const std::string& id) const {
    return {REMOVES_LATER, {{"id", id}, {"ends", Moment{end_under(id)}}}};
}

bool Standing::was_stored() const {
    const bool due_again = due && remembered.pair == current;
    return remembered.step == RENEWAL_STORED && !due_again && waiting.empty() &&
           certificate(remembered.pair) != nullptr;
}

std::string Standing::old_of(const std::string& pair) const {
    std::vector<Candidate> others = certified;
    std::erase_if(others, [&](const Candidate& one) { return one.id == pair; });
    const bool remembers = remembered.pair == pair;
    const auto is_old = [&](const Candidate& one) {
        return (!signer.empty() && one.der == signer) ||
               (remembers && remembered.replaces == one.id && remembered.replaced_serial == one.serial);
    };
    for (const auto* list : {&std::as_const(others), &retired})
        if (const auto found = std::find_if(list->begin(), list->end(), is_old); found != list->end())
            return found->id;
    const bool is_gone = !signer.empty() || (remembers && !remembered.replaces.empty());
    return others.size() == 1 && !is_gone ? others.front().id : "";
}

void Standing::note_request(const MadeRequest& made) {
    const auto is_there = [&](const Held& one) { return one.id == made.pair; };
    if (std::none_of(now.held.begin(), now.held.end(), is_there))
        now.held.push_back({made.pair, 0, true, true});
    requested = true;
    waiting = made.pair;
    remembered = {kind,
                  made.pair,
                  RENEWAL_REQUESTED,
                  absolute(made.file),
                  made.renews,
                  serial_under(made.renews),
                  std::time(nullptr)};
    if (const Candidate* renewed = certificate(made.renews)) signer = renewed->der;
}

void Standing::note_stored(const Installed& installed, const std::string& replaces) {
    remembered.kind = kind;
    remembered.pair = installed.pair;
    remembered.step = RENEWAL_STORED;
    remembered.replaces = replaces;
    remembered.replaced_serial = serial_under(replaces);
    now = installed.now;
}

Standing find_standing(const RenewalWishes& wishes, const OpenedCard& card) {
    const CardView& view = card.view;
    const Inventory inventory = inventory_of(card, wishes.backup);
    Standing standing;
    standing.card = card.facts();
    standing.now = view.contents();
    standing.kind = wishes.request.kind;
    standing.marked = view.marked_pending();
    standing.nothing = unchanged(standing.card, view);
    take_inventory(standing, inventory, wishes.request.days);
    add_certified(standing, view);
    add_retired(standing, inventory);
    const Bytes key = read_request(standing, wishes.request.out);
    standing.requested = !standing.waiting.empty() && !key.empty() && key == view.modulus(standing.waiting);
    take_remembered(standing);
    return standing;
}

Standing standing_shown(const RenewalWishes& wishes, const CardStatus& status, const Inventory& inventory) {
    Standing standing;
    standing.card = status.list.card;
    standing.kind = wishes.request.kind;
    take_inventory(standing, inventory, wishes.request.days);
    add_retired(standing, inventory);
    standing.requested = !read_request(standing, wishes.request.out).empty() && !standing.waiting.empty();
    const std::string signer = standing.signer.empty() ? "" : serial_of(standing.signer);
    for (const CertificateRecord& one : inventory.certificates)
        if (one.kind == standing.kind)
            standing.certified.push_back(
                {one.id, one.serial, one.serial == signer ? standing.signer : Bytes(), one.ends});
    take_remembered(standing);
    return standing;
}

} // namespace zvhost
