#include "host/remember.h"

#include "host/journal_problem.h"
#include "host/listing.h"
#include "host/public_inventory.h"

#include <algorithm>
#include <ctime>

namespace zvhost {
namespace {

bool are_same(const RememberedCertificate& a, const RememberedCertificate& b) {
    return a.kind == b.kind && a.id == b.id && a.serial == b.serial;
}

std::vector<RememberedCertificate> certificates_of(const CardList& list, const RememberedCard& before) {
    std::vector<RememberedCertificate> found;
    for (const ListedCertificate& one : list.certificates) {
        found.push_back(
            {one.record.kind, one.record.id, one.record.serial, one.record.ends, one.replaced, 0});
        for (const RememberedCertificate& known : before.certificates)
            if (are_same(known, found.back())) found.back().told_at = known.told_at;
    }
    return found;
}

void keep_hidden(std::vector<RememberedCertificate>& found, const RememberedCard& before,
                 const std::vector<std::string>& hidden) {
    for (RememberedCertificate known : before.certificates) {
        if (std::find(hidden.begin(), hidden.end(), known.id) == hidden.end()) continue;
        known.replaced = known.replaced || std::any_of(found.begin(), found.end(), [&](const auto& one) {
                             return one.kind == known.kind && one.ends > known.ends;
                         });
        found.push_back(known);
    }
}

std::vector<RememberedPair> pairs_of(const CardList& list) {
    std::vector<RememberedPair> found;
    for (const ListedPair& listed : list.pending)
        found.push_back({listed.pair.kind, listed.pair.id});
    if (list.services_pending) found.push_back({Kind::services, ZV_OWN_PAIR});
    return found;
}

// The serial number of the services card's own certificate that ends last.
std::string own_certificate(const std::vector<RememberedCertificate>& certificates) {
    for (const RememberedCertificate& one : certificates)
        if (one.kind == Kind::services && !one.replaced) return one.serial;
    return {};
}

template <class Work> RememberedCard changed(const std::string& serial, const Work& work) {
    RememberedCard now;
    note_journal(Journal().change(serial, [&](RememberedCard& card) {
        work(card);
        now = card;
    }));
    return now;
}

void take_list(RememberedCard& card, const CardList& list) {
    card.services_card = list.card.services_card;
    card.seen_at = std::time(nullptr);
    card.certificates = certificates_of(list, card);
    card.pending = pairs_of(list);
    const RememberedRenewal* own = card.renewal(Kind::services);
    if (own != nullptr && own->step == RENEWAL_REQUESTED && !card.is_pending(Kind::services))
        card.end_renewal(Kind::services);
}

std::string serial_of_card(const CardList& list) {
    return list.card.state ? list.card.state->serial : "";
}

} // namespace

void remember_all(const CardFacts& card, const Inventory& inventory, const CardView& view) {
    const CardList list = list_of(card, inventory, view, 0);
    (void)changed(serial_of_card(list), [&](RememberedCard& entry) { take_list(entry, list); });
}

void remember_view(const CardFacts& card, const CardView& view) {
    Inventory inventory = public_inventory(view, card);
    inventory.services_pending = card.services_card && view.marked_pending();
    remember_all(card, inventory, view);
}

RememberedCard remember_shown(const CardList& list, const std::vector<std::string>& hidden) {
    return changed(serial_of_card(list), [&](RememberedCard& card) {
        const RememberedCard before = card;
        take_list(card, list);
        keep_hidden(card.certificates, before, hidden);
        if (const RememberedRenewal* renewal = before.renewal(Kind::services)) card.set_renewal(*renewal);
        if (before.is_pending(Kind::services) &&
            own_certificate(before.certificates) == own_certificate(card.certificates))
            card.pending.push_back({Kind::services, ZV_OWN_PAIR});
    });
}

bool is_new_one(const RememberedRenewal& renewal, const std::string& serial) {
    if (renewal.kind != Kind::services || renewal.step != RENEWAL_REQUESTED) return true;
    return !renewal.replaced_serial.empty() && serial != renewal.replaced_serial;
}

void remember_request(const CardFacts& card, const RememberedRenewal& renewal) {
    (void)changed(card.state ? card.state->serial : "", [&](RememberedCard& entry) {
        std::erase_if(entry.pending, [&](const RememberedPair& pair) { return pair.id == renewal.pair; });
        entry.pending.push_back({renewal.kind, renewal.pair});
        entry.set_renewal(renewal);
    });
}

} // namespace zvhost
