#include "host/free_ids.h"

#include "host/about_card.h"
#include "host/inventory.h"
#include "host/remember.h"

#include <algorithm>

namespace zvhost {
namespace {

// The first pair of a kind that waits is what a new one would take the place of.
Proposal settled(const CardView& view, Kind kind) {
    for (const std::string& id : view.pending_pairs())
        if (kind_of_pair(id) == kind) return {id, false};
    return proposal_in(view, kind);
}

FreeId look_up(const Inventory& inventory, Kind kind, const Proposal& proposal) {
    const auto same = [&](const auto& pair) { return pair.id == proposal.id; };
    return {kind, proposal, std::any_of(inventory.pending.begin(), inventory.pending.end(), same),
            std::any_of(inventory.retired.begin(), inventory.retired.end(), same)};
}

// A series that is full ends the search.
FreeIds read_free(const OpenedCard& card) {
    const Inventory inventory = inventory_of(card);
    remember_all(card.facts(), inventory, card.view);
    FreeIds free{card.facts(), {}};
    bool full = false;
    for (const zv::KindRow& kind : zv::KINDS) {
        if (!kind.new_pair) continue;
        const Proposal proposal = full ? Proposal() : settled(card.view, kind.id);
        full = full || proposal.none_free;
        free.kinds.push_back(look_up(inventory, kind.id, proposal));
    }
    return free;
}

} // namespace

FreeIds find_free_ids(const CardChoice& choice, PinSource& pin) {
    OpenedCard card = open_card(choice, pin);
    return about_card(card, [&] { return read_free(card); });
}

} // namespace zvhost
