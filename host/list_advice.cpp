#include "host/advice.h"
#include "host/listing.h"
#include "host/wishes.h"

#include <fmt/format.h>

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
    Values values = {{"kind", kind_name(kind)}};
    if (early) values.emplace_back("days", long{list.days});
    return {"request",
            fmt::format("The {0} certificate is due. Renew it:  zvrenew request {0} --out FILE{1}",
                        kind_name(kind), early ? fmt::format(" --days {}", list.days) : ""),
            values};
}

void advise_on_pending(std::vector<Advice>& advice, const ListedPair& listed) {
    const auto& [kind, id] = listed.pair;
    const Values values = {{"kind", kind_name(kind)}, {"pair", id}};
    advice.push_back({"install",
                      fmt::format("The new {} pair {} waits for its certificate.\n"
                                  "  When it has come:   zvrenew install CERTIFICATE",
                                  kind_name(kind), id),
                      values});
    if (listed.wants_pin)
        advice.push_back(leave_to_card_software(id));
    else if (listed.renewable)
        advice.push_back(
            {"request-again",
             fmt::format("  To ask once more:   zvrenew request {} --out FILE   (the same pair is used)",
                         kind_name(kind)),
             values});
}

Advice advice_on_retired(const RetiredPair& pair) {
    return {"card-software",
            fmt::format("The keys {} are what is left of a certificate that was removed (a copy: {}).\n"
                        "  The card's own software can remove them; nothing uses them.",
                        pair.id, pair.backup),
            {{"remove", std::vector{pair.id}}}};
}

void advise_on_services(std::vector<Advice>& advice, bool stored) {
    advice.push_back({"install",
                      fmt::format("A request for the services certificate is under way.\n"
                                  "  When it has come:   zvrenew install CERTIFICATE{}",
                                  stored ? " --remove-old" : ""),
                      {{"kind", kind_name(Kind::services)}, {"pair", ZV_OWN_PAIR}, {"remove_old", stored}}});
    if (stored)
        advice.push_back(
            {"request-again",
             "  To ask once more:   zvrenew request services --out FILE   (the same keys are used)",
             {{"kind", kind_name(Kind::services)}, {"pair", ZV_OWN_PAIR}}});
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
