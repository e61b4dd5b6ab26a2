#include "cli/card_status.h"

#include "cli/public_inventory.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace cli {
namespace {

Advice list_with_pin(const char* text) {
    return {"list", text};
}

// What was replaced is no matter, as in the list.
Exit exit_of(const CardList& list) {
    const auto any = [&](const auto& holds) {
        return std::any_of(list.certificates.begin(), list.certificates.end(), holds);
    };
    if (any([](const ListedCertificate& one) { return one.days_left < 0 && !one.replaced; }))
        return Exit::expired;
    if (!list.pending.empty()) return Exit::under_way;
    if (any([](const ListedCertificate& one) { return one.due; })) return Exit::due;
    return list.certificates.empty() ? Exit::nothing_there : Exit::done;
}

void stop_if_hidden(const CardStatus& status) {
    if (status.exit != Exit::nothing_there) return;
    if (status.list.unreadable > 0)
        throw Stop(Exit::failed, "The certificates on the card cannot be read: when they end is not known.");
    if (!status.uncertified.empty())
        throw Stop(Exit::failed,
                   fmt::format("The card shows the keys {}, but no certificate without the PIN.",
                               fmt::join(status.uncertified, ", ")),
                   list_with_pin("See what there is with: zvrenew list"));
}

} // namespace

CardStatus status_of(const CardFacts& card, const CardView& view, int days) {
    const Inventory inventory = public_inventory(view, card);
    CardStatus status{list_of(card, inventory, view, days), view.uncertified_first_keys(), Exit::done};
    std::erase_if(status.uncertified, [&](const std::string& id) {
        return std::any_of(inventory.retired.begin(), inventory.retired.end(),
                           [&](const RetiredPair& pair) { return pair.id == id; });
    });
    // Whether a pair can sign its request once more does not show.
    for (ListedPair& listed : status.list.pending)
        listed.renewable = false;
    status.exit = exit_of(status.list);
    stop_if_hidden(status);
    return status;
}

std::string in_words(const CardStatus& status) {
    std::string text = in_words(status.list);
    if (!status.uncertified.empty())
        text += fmt::format("  (keys that show no certificate: {})\n", fmt::join(status.uncertified, ", "));
    return text;
}

Json as_json(const CardStatus& status) {
    Json json = contents_json(status.list);
    if (status.list.card.services_card) json["services_pending"] = nullptr;
    json["uncertified"] = status.uncertified;
    return json;
}

std::vector<Advice> advice_on(const CardStatus& status) {
    std::vector<Advice> advice = advice_on(status.list);
    if (status.list.card.services_card)
        advice.push_back(
            list_with_pin("Whether a request for the card's own certificate is under way does not "
                          "show without the PIN. See it with:  zvrenew list"));
    else if (status.exit == Exit::nothing_there)
        advice.push_back(
            list_with_pin("What the card does not show without the PIN, see with:  zvrenew list"));
    return advice;
}

} // namespace cli
