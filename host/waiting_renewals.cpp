#include "host/card_status.h"
#include "host/journal.h"
#include "host/remember.h"
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

// Empty: it is not there.
std::string stored_certificate(const CardList& list, const RememberedRenewal& renewal) {
    for (const ListedCertificate& one : list.certificates) {
        const bool is_last = renewal.kind != Kind::services || !one.replaced;
        if (one.record.id == renewal.pair && is_last && !one.due && is_new_one(renewal, one.record.serial))
            return one.record.der;
    }
    return {};
}

// Whether the services card's own certificate is still to come, as far as is known.
bool waits_for_own(const CardStatus& status, const RememberedCard& card) {
    const RememberedRenewal* renewal = card.renewal(Kind::services);
    return status.services_pending &&
           (renewal == nullptr || stored_certificate(status.list, *renewal).empty());
}

} // namespace

std::vector<WaitingRenewal> waiting_renewals(const CardStatus& status) {
    const CardFacts& facts = status.list.card;
    const RememberedCard card = Journal().card(facts.state ? facts.state->serial : "");
    std::vector<WaitingRenewal> waiting;
    for (const ListedPair& listed : status.list.pending)
        waiting.push_back(remembered(card, listed.pair.kind, listed.pair.id));
    if (waits_for_own(status, card)) waiting.push_back(remembered(card, Kind::services, ZV_OWN_PAIR));
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
