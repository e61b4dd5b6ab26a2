#include "cli/about_card.h"
#include "cli/card_list.h"
#include "cli/commands.h"

#include <ctime>

namespace cli {
namespace {

ListedCertificate listed(const CertificateRecord& record, const Inventory& inventory, int days,
                         std::time_t now) {
    const bool replaced = inventory.current(record.kind) != &record;
    return {record, days_until(record.ends, now), ends_within(record.ends, days, now) && !replaced, replaced,
            record.kind == Kind::services && inventory.services_pending};
}

Report list_card(OpenedCard& card, int days) {
    const CardView view = view_card(card);
    const CardList list = list_of(card.facts(), read_inventory(card, view), view, days);
    Report report;
    report.text = in_words(list);
    report.json = as_json(list);
    report.advice = advice_on(list);
    return report;
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

Report run_list(const ListOptions& options) {
    OpenedCard card = open_card(options);
    return about_card(card, [&] { return list_card(card, options.days); });
}

} // namespace cli
