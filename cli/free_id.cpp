#include "cli/card_json.h"
#include "cli/commands.h"
#include "cli/inventory.h"
#include "cli/library_text.h"
#include "zvRenew.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace cli {
namespace {

struct KeyTexts {
    std::array<char, ZV_KEY_ID_SIZE> signature{};
    std::array<char, ZV_KEY_ID_SIZE> authentication{};
};

// 1 says that a series is full, which is an answer; the texts tell which one.
KeyTexts ask_library(OpenedCard& card) {
    KeyTexts keys;
    std::string reader = card.place.reader;
    forget_library_texts();
    const int code = rinnovo_Card_findFreeCKAID(reader.data(), card.pin.text(), keys.signature.data(),
                                                keys.authentication.data());
    const bool full = code == ZV_FAILED && (as_proposal(keys.signature.data()).none_free ||
                                            as_proposal(keys.authentication.data()).none_free);
    if (code != ZV_OK && !full)
        throw library_stop(
            "The identifiers could not be read", code,
            Advice{"repeat", "Nothing on the card was changed. Leave the card in the reader and try again."});
    return keys;
}

void add(Report& report, const Inventory& inventory, Kind kind, const std::string& key_text) {
    const Proposal proposal = as_proposal(key_text);
    const bool pending = std::any_of(inventory.pending.begin(), inventory.pending.end(),
                                     [&](const PendingPair& pair) { return pair.id == proposal.id; });
    const bool retired = std::any_of(inventory.retired.begin(), inventory.retired.end(),
                                     [&](const RetiredPair& pair) { return pair.id == proposal.id; });
    Json entry = proposal_json(proposal);
    if (!proposal.id.empty()) {
        entry["pending"] = pending;
        entry["retired"] = retired;
    }
    report.json[kind_name(kind)] = entry;
    const std::string words = proposal.none_free    ? "none free"
                              : proposal.id.empty() ? "not looked for, since no signature identifier is free"
                              : pending ? proposal.id + " (taken by a pair that waits for its certificate)"
                              : retired ? proposal.id + " (taken by keys that a removal left)"
                                        : proposal.id;
    report.text += fmt::format("{}{:<16}{}", report.text.empty() ? "" : "\n", kind_name(kind), words);
}

Report show_free(OpenedCard& card) {
    // The reading also tells the library where the modules are.
    const Inventory inventory = read_inventory(card, view_card(card));
    const KeyTexts keys = ask_library(card);
    Report report;
    report.json = card_json(card);
    add(report, inventory, Kind::signature, keys.signature.data());
    add(report, inventory, Kind::authentication, keys.authentication.data());
    return report;
}

} // namespace

Report run_free_id(const CommonOptions& options) {
    OpenedCard card = open_card(options);
    return about_card(card, [&] { return show_free(card); });
}

} // namespace cli
