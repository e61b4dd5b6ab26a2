#include "host/card_status.h"

#include "host/journal.h"
#include "host/listing.h"
#include "host/pin_gate.h"
#include "host/place.h"
#include "host/public_inventory.h"
#include "host/remember.h"

#include <algorithm>

namespace zvhost {
namespace {

Advice list_with_pin(const char* id) {
    return {"list", {id, {}}};
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

// A services card whose own is being renewed hides nothing: the old one goes before the new one comes.
void stop_if_hidden(const CardStatus& status) {
    if (status.exit != Exit::nothing_there) return;
    if (status.list.unreadable > 0) throw Error(Exit::failed, {"certificates-unreadable", {}});
    if (!status.uncertified.empty() && !status.services_pending)
        throw Error(Exit::failed, {"certificates-hidden", {{"keys", status.uncertified}}},
                    list_with_pin("see-list"));
}

std::vector<Advice> advice_on(const CardStatus& status) {
    CardList list = status.list;
    list.services_pending = status.services_pending;
    std::vector<Advice> advice = advice_on(list);
    if (status.services_pending)
        advice.push_back(list_with_pin("services-request-by-journal"));
    else if (status.list.card.services_card)
        advice.push_back(list_with_pin("services-request-hidden"));
    else if (status.exit == Exit::nothing_there)
        advice.push_back(list_with_pin("more-with-pin"));
    return advice;
}

CardStatus shown(const CardFacts& card, const CardView& view, int days) {
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
    return status;
}

// What is known of the card is added to `facts` as soon as it is.
CardStatus look_at(const CardChoice& choice, int days, std::optional<CardFacts>& facts) {
    const FoundCard found = find_card(choice, facts);
    const Session session(*found.module, found.state.slot);
    CardStatus status = shown(*facts, view_in(session), days);
    status.services_pending = Journal().card(found.state.serial).is_pending(Kind::services);
    stop_if_hidden(status);
    status.services_pending = remember_shown(status.list, status.uncertified).is_pending(Kind::services);
    if (status.services_pending && status.exit != Exit::expired) status.exit = Exit::under_way;
    status.list.advice = advice_on(status);
    return status;
}

} // namespace

CardStatus status_of(const CardFacts& card, const CardView& view, int days) {
    CardStatus status = shown(card, view, days);
    stop_if_hidden(status);
    return status;
}

CardStatus look_at_card(const CardChoice& choice, int days) {
    std::optional<CardFacts> facts;
    try {
        return look_at(choice, days, facts);
    } catch (Error& error) {
        if (facts) error.tell_card(*facts);
        if (facts && error.exit == Exit::failed) error.card = OnCard{{}, {}, true};
        throw;
    }
}

} // namespace zvhost
