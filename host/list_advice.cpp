#include "host/advice.h"
#include "host/listing.h"
#include "host/wishes.h"

#include <algorithm>

namespace zvhost {
namespace {

bool under_way(const CardList& list, Kind kind) {
    if (kind == Kind::services) return list.services_pending;
    return std::any_of(list.pending.begin(), list.pending.end(),
                       [&](const ListedPair& listed) { return listed.pair.kind == kind; });
}

bool none_free(const CardList& list, Kind kind) {
    return list.next[kind].none_free;
}

// A request that is not told the days of the list would find nothing due.
Advice advice_on_due(const CardList& list, const ListedCertificate& listed) {
    const Kind kind = listed.record.kind;
    if (none_free(list, kind)) return free_an_identifier(kind);
    const bool early = listed.days_left >= USUAL_DAYS;
    Values values = {{"kind", kind}};
    if (early) values.emplace_back("days", long{list.days});
    return {
        "request",
        {early ? "due-early" : "due", {{"kind", kind}, {"word", kind_name(kind)}, {"days", long{list.days}}}},
        values};
}

void advise_on_pending(std::vector<Advice>& advice, const ListedPair& listed) {
    const auto& [kind, id] = listed.pair;
    const Values values = {{"kind", kind}, {"pair", id}};
    advice.push_back({"install", {"pair-waits", values}, values});
    if (listed.wants_pin)
        advice.push_back(leave_to_card_software(id));
    else if (listed.renewable)
        advice.push_back({"request-again", {"ask-again", {{"word", kind_name(kind)}}}, values});
}

Advice advice_on_retired(const RetiredPair& pair) {
    return {"remove", {"keys-left", {{"id", pair.id}, {"backup", pair.backup}}}, {{"id", pair.id}}};
}

void advise_on_services(std::vector<Advice>& advice, bool stored) {
    advice.push_back({"install",
                      {stored ? "services-under-way-stored" : "services-under-way", {}},
                      {{"kind", Kind::services}, {"pair", ZV_OWN_PAIR}, {"remove_old", stored}}});
    if (stored)
        advice.push_back(
            {"request-again", {"ask-again-services", {}}, {{"kind", Kind::services}, {"pair", ZV_OWN_PAIR}}});
}

} // namespace

std::vector<Advice> advice_on(const CardList& list) {
    std::vector<Advice> advice;
    for (const ListedCertificate& listed : list.certificates)
        if (listed.due && !under_way(list, listed.record.kind)) advice.push_back(advice_on_due(list, listed));
    for (const ListedPair& listed : list.pending)
        advise_on_pending(advice, listed);
    for (const RetiredPair& pair : list.retired)
        advice.push_back(advice_on_retired(pair));
    if (list.services_pending) advise_on_services(advice, list.services_stored);
    return advice;
}

} // namespace zvhost
