#include "host/inventory.h"

#include "host/advice.h"
#include "host/record_of.h"

#include <algorithm>

namespace zvhost {
namespace {

bool begins_a_series(const std::string& id) {
    return std::any_of(std::begin(zv::KINDS), std::end(zv::KINDS),
                       [&](const zv::KindRow& kind) { return kind.new_pair && id.starts_with(kind.series); });
}

// On a services card the key makes a certificate the holder's; on others all are, the authority's left out.
bool is_holders_own(const CardView& view, const CardObject& object, bool services_card) {
    if (object.type != CKO_CERTIFICATE) return false;
    return services_card ? view.find(CKO_PRIVATE_KEY, object.id) != nullptr
                         : !object.label.starts_with(ZV_AUTHORITY_ID);
}

// Whether a certificate makes it worth while to say which identifier the next of the kind would get.
bool asks_for(const zv::KindRow& kind, const std::string& id, bool services_card) {
    if (services_card) return id.starts_with(kind.series);
    const bool signature = id.starts_with(zv::SIGNATURE_SERIES) || id.starts_with(zv::OTHER_SIGNATURE_SERIES);
    return signature == (kind.id == Kind::signature);
}

// Of the pairs that wait the library knows the first. A series that is full ends its search.
void propose(Inventory& inventory, const CardView& view, bool services_card) {
    std::vector<std::string> waiting = view.pending_pairs();
    if (services_card) std::erase_if(waiting, [](const std::string& id) { return !begins_a_series(id); });
    const std::vector<std::string> certificates = view.ids_of_class(CKO_CERTIFICATE);
    for (const zv::KindRow& kind : zv::KINDS) {
        const auto asks = [&](const std::string& id) { return asks_for(kind, id, services_card); };
        const bool waits = !waiting.empty() && kind_of_pair(waiting.front()) == kind.id;
        if (!kind.new_pair || waits || std::none_of(certificates.begin(), certificates.end(), asks)) continue;
        inventory.next[kind.id] = proposal_in(view, kind.id);
        if (inventory.next[kind.id].none_free) return;
    }
}

} // namespace

Proposal proposal_in(const CardView& view, Kind kind) {
    for (const std::string& id : identifiers_of(kind))
        if (view.find(CKO_PUBLIC_KEY, id) == nullptr) return {id, false};
    return {{}, true};
}

void Inventory::add(const CardObject& object, Kind kind) {
    if (auto record = record_of(object, kind))
        certificates.push_back(std::move(*record));
    else
        ++unreadable;
}

void take_retired(Inventory& inventory, const CardView& view, const std::string& card) {
    for (const std::string& id : view.identifiers())
        if (const Backup* backup = backup_of_leftover(inventory.backups, view, card, id);
            backup != nullptr && id != ZV_OWN_PAIR)
            inventory.retired.push_back({id, backup->file});
    std::erase_if(inventory.pending, [&](const PendingPair& pair) {
        return std::any_of(inventory.retired.begin(), inventory.retired.end(),
                           [&](const RetiredPair& retired) { return retired.id == pair.id; });
    });
}

Inventory inventory_of(const OpenedCard& card, const std::string& given_backup) {
    const CardView& view = card.view;
    const bool services_card = card.place.services;
    Inventory inventory;
    for (const zv::KindRow& kind : zv::KINDS)
        for (const CardObject& object : view.objects())
            if (is_holders_own(view, object, services_card) &&
                kind_of_certificate(object.id, services_card) == kind.id)
                inventory.add(object, kind.id);
    inventory.own_pair = services_card && view.find(CKO_PRIVATE_KEY, ZV_OWN_PAIR) != nullptr;
    inventory.services_pending = services_card && view.marked_pending();
    propose(inventory, view, services_card);
    for (const std::string& id : view.pending_pairs())
        inventory.pending.push_back({kind_of_pair(id), id});
    inventory.backups = backups_of(card.state.serial, given_backup);
    take_retired(inventory, view, card.state.serial);
    return inventory;
}

const CertificateRecord* Inventory::current(Kind kind) const {
    const CertificateRecord* last = nullptr;
    for (const CertificateRecord& record : certificates)
        if (record.kind == kind && (last == nullptr || record.ends > last->ends)) last = &record;
    return last;
}

const CertificateRecord* Inventory::find(Kind kind, const std::string& id) const {
    const auto found = std::find_if(certificates.begin(), certificates.end(), [&](const auto& record) {
        return record.kind == kind && record.id == id;
    });
    return found == certificates.end() ? nullptr : &*found;
}

const PendingPair* Inventory::pending_pair(Kind kind) const {
    const auto found = std::find_if(pending.begin(), pending.end(),
                                    [&](const PendingPair& pair) { return pair.kind == kind; });
    return found == pending.end() ? nullptr : &*found;
}

} // namespace zvhost
