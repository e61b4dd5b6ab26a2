#include "host/card_list.h"

#include "host/about_card.h"
#include "host/listing.h"
#include "host/remember.h"

#include <ctime>

namespace zvhost {
namespace {

ListedCertificate listed(const CertificateRecord& record, const Inventory& inventory, int days,
                         std::time_t now) {
    const bool replaced = inventory.current(record.kind) != &record;
    return {record, days_until(record.ends, now), ends_within(record.ends, days, now) && !replaced, replaced,
            record.kind == Kind::services && inventory.services_pending};
}

} // namespace

CardList list_of(const CardFacts& card, const Inventory& inventory, const CardView& view, int days) {
    CardList list;
    list.card = card;
    list.days = days;
    const std::time_t now = std::time(nullptr);
    for (const CertificateRecord& record : inventory.certificates)
        list.certificates.push_back(listed(record, inventory, days, now));
    list.unreadable = inventory.unreadable;
    for (const PendingPair& pair : inventory.pending)
        list.pending.push_back({pair, view.wants_pin(pair.id), inventory.current(pair.kind) != nullptr});
    list.retired = inventory.retired;
    list.services_pending = inventory.services_pending;
    list.services_stored = inventory.current(Kind::services) != nullptr;
    list.next = inventory.next;
    return list;
}

CardList list_card(const CardChoice& choice, PinSource& pin, int days) {
    OpenedCard card = open_card(choice, pin);
    return about_card(card, [&] {
        const Inventory inventory = inventory_of(card);
        remember_all(card.facts(), inventory, card.view);
        CardList list = list_of(card.facts(), inventory, card.view, days);
        list.advice = advice_on(list);
        return list;
    });
}

} // namespace zvhost
