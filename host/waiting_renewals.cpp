#include "host/card_status.h"
#include "host/journal.h"
#include "zvConstants.h"

#include <algorithm>

namespace zvhost {
namespace {

WaitingRenewal remembered(const RememberedCard& card, Kind kind, const std::string& pair) {
    WaitingRenewal waiting{kind, pair, {}, {}, 0, {}, false};
    const RememberedRenewal* renewal = card.renewal(kind);
    if (renewal == nullptr || renewal->pair != pair) return waiting;
    waiting.request = renewal->request;
    waiting.replaces = renewal->replaces;
    waiting.begun = renewal->begun;
    return waiting;
}

// Empty: it is not there. A services card has its certificate under the same identifier all along.
std::string stored_certificate(const CardList& list, const RememberedRenewal& renewal) {
    if (renewal.kind == Kind::services && renewal.step == RENEWAL_REQUESTED) return {};
    for (const ListedCertificate& one : list.certificates)
        if (one.record.id == renewal.pair && !one.due) return one.record.der;
    return {};
}

} // namespace

std::vector<WaitingRenewal> waiting_renewals(const CardStatus& status) {
    const CardFacts& facts = status.list.card;
    const RememberedCard card = Journal().card(facts.state ? facts.state->serial : "");
    std::vector<WaitingRenewal> waiting;
    for (const ListedPair& listed : status.list.pending)
        waiting.push_back(remembered(card, listed.pair.kind, listed.pair.id));
    if (status.services_pending) waiting.push_back(remembered(card, Kind::services, ZV_OWN_PAIR));
    for (const RememberedRenewal& renewal : card.renewals) {
        const auto same = [&](const WaitingRenewal& one) { return one.kind == renewal.kind; };
        const std::string stored = stored_certificate(status.list, renewal);
        if (stored.empty() || std::any_of(waiting.begin(), waiting.end(), same)) continue;
        waiting.push_back(remembered(card, renewal.kind, renewal.pair));
        waiting.back().stored = stored;
        waiting.back().proved = renewal.step != RENEWAL_REQUESTED;
    }
    return waiting;
}

std::vector<Kind> renewals_due(const CardStatus& status) {
    const std::vector<WaitingRenewal> waiting = waiting_renewals(status);
    std::vector<Kind> kinds;
    for (const Kind kind : {Kind::signature, Kind::authentication, Kind::services}) {
        const auto of_kind = [&](const WaitingRenewal& one) { return one.kind == kind; };
        const auto due = [&](const ListedCertificate& one) {
            return one.record.kind == kind && one.due && !one.replaced;
        };
        if (std::any_of(status.list.certificates.begin(), status.list.certificates.end(), due) &&
            std::none_of(waiting.begin(), waiting.end(), of_kind))
            kinds.push_back(kind);
    }
    return kinds;
}

} // namespace zvhost
