#include "host/public_inventory.h"

#include "host/advice.h"
#include "zvConstants.h"

#include <algorithm>

namespace zvhost {
namespace {

bool is_holders(const CardObject& object, const CardView& view, bool services_card) {
    if (!services_card) return !object.label.starts_with(ZV_AUTHORITY_ID);
    return view.find(CKO_PUBLIC_KEY, object.id) != nullptr ||
           std::any_of(std::begin(zv::KINDS), std::end(zv::KINDS),
                       [&](const zv::KindRow& kind) { return object.id.starts_with(kind.series); });
}

Proposal proposal_of(const CardView& view, Kind kind) {
    const std::vector<std::string> ids = identifiers_of(kind);
    const auto taken = [&](const std::string& id) { return view.has(id); };
    return {{}, std::all_of(ids.begin(), ids.end(), taken)};
}

} // namespace

Inventory public_inventory(const CardView& view, const CardFacts& card) {
    const std::string serial = card.state ? card.state->serial : "";
    Inventory inventory;
    for (const CardObject& object : view.objects())
        if (object.type == CKO_CERTIFICATE && is_holders(object, view, card.services_card))
            inventory.add(object, kind_of_certificate(object.id, card.services_card));
    for (const std::string& id : view.pending_public_keys())
        inventory.pending.push_back({kind_of_pair(id), id});
    inventory.backups = backups_of(serial, {});
    take_retired(inventory, view, serial);
    for (const zv::KindRow& kind : zv::KINDS)
        if (kind.new_pair) inventory.next[kind.id] = proposal_of(view, kind.id);
    return inventory;
}

} // namespace zvhost
