#include "cli/about_card.h"
#include "cli/card_json.h"
#include "cli/commands.h"
#include "cli/inventory.h"
#include "cli/library_text.h"
#include "zvRenew.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace cli {
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
        throw library_stop(
            "The identifiers could not be read", code,
            Advice{"repeat", "Nothing on the card was changed. Leave the card in the reader and try again."});
    return keys;
}

// What new keys of a kind would be called, and what is in the way.
struct FreeId {
    Kind kind;
    Proposal proposal;
    bool pending = false; // a pair that waits for its certificate has it
    bool retired = false; // keys that a removal left have it
};

FreeId look_up(const Inventory& inventory, Kind kind, const std::string& key_text) {
    const Proposal proposal = as_proposal(key_text);
    const auto same = [&](const auto& pair) { return pair.id == proposal.id; };
    return {kind, proposal, std::any_of(inventory.pending.begin(), inventory.pending.end(), same),
            std::any_of(inventory.retired.begin(), inventory.retired.end(), same)};
}

std::string in_words(const FreeId& free) {
    const std::string& id = free.proposal.id;
    if (free.proposal.none_free) return "none free";
    if (id.empty()) return "not looked for, since no signature identifier is free";
    if (free.pending) return id + " (taken by a pair that waits for its certificate)";
    return free.retired ? id + " (taken by keys that a removal left)" : id;
}

Json as_json(const FreeId& free) {
    Json entry = as_json(free.proposal);
    if (!free.proposal.id.empty()) entry.update({{"pending", free.pending}, {"retired", free.retired}});
    return entry;
}

Report show_free(OpenedCard& card) {
    // The reading also tells the library where the modules are.
    const Inventory inventory = read_inventory(card, view_card(card));
    const KeyTexts keys = ask_library(card);
    Report report;
    report.json = as_json(card.facts());
    for (const zv::KindRow& kind : zv::KINDS) {
        if (!kind.new_pair) continue;
        const FreeId free = look_up(inventory, kind.id, keys[kind.id].data());
        report.json[kind_name(free.kind)] = as_json(free);
        report.text +=
            fmt::format("{}{:<16}{}", report.text.empty() ? "" : "\n", kind_name(free.kind), in_words(free));
    }
    return report;
}

} // namespace

Report run_free_id(const CardOptions& options) {
    OpenedCard card = open_card(options);
    return about_card(card, [&] { return show_free(card); });
}

} // namespace cli
