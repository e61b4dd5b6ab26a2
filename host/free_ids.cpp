#include "host/free_ids.h"

#include "host/about_card.h"
#include "host/inventory.h"
#include "host/library_text.h"
#include "host/refused_pin.h"
#include "host/remember.h"
#include "zvRenew.h"

#include <algorithm>
#include <array>

namespace zvhost {
namespace {

using KeyTexts = zv::ByKind<std::array<char, ZV_KEY_ID_SIZE>>;

// 1 says that a series is full, which is an answer; the texts tell which one.
KeyTexts ask_library(OpenedCard& card) {
    KeyTexts keys;
    std::string reader = card.place.reader;
    forget_library_texts();
    const int code = rinnovo_Card_findFreeCKAID(reader.data(), card.pin.text(), keys[Kind::signature].data(),
                                                keys[Kind::authentication].data());
    const bool full = code == ZV_FAILED && std::ranges::any_of(keys.things, [](const auto& key) {
                          return as_proposal(key.data()).none_free;
                      });
    if (code != ZV_OK && !full)
        throw with_pin(card.pin, library_stop("identifiers-not-read", code,
                                              Advice{"repeat", {"unchanged-try-again", {}}}));
    return keys;
}

FreeId look_up(const Inventory& inventory, Kind kind, const std::string& key_text) {
    const Proposal proposal = as_proposal(key_text);
    const auto same = [&](const auto& pair) { return pair.id == proposal.id; };
    return {kind, proposal, std::any_of(inventory.pending.begin(), inventory.pending.end(), same),
            std::any_of(inventory.retired.begin(), inventory.retired.end(), same)};
}

FreeIds read_free(OpenedCard& card) {
    // The reading also tells the library where the modules are.
    const CardView view = view_card(card);
    const Inventory inventory = read_inventory(card, view);
    remember_all(card.facts(), inventory, view);
    const KeyTexts keys = ask_library(card);
    FreeIds free{card.facts(), {}};
    for (const zv::KindRow& kind : zv::KINDS)
        if (kind.new_pair) free.kinds.push_back(look_up(inventory, kind.id, keys[kind.id].data()));
    return free;
}

} // namespace

FreeIds find_free_ids(const CardChoice& choice, PinSource& pin) {
    OpenedCard card = open_card(choice, pin);
    return about_card(card, [&] { return read_free(card); });
}

} // namespace zvhost
