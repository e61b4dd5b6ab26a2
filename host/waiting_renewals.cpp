#include "host/card_status.h"
#include "host/journal.h"
#include "zvConstants.h"

namespace zvhost {
namespace {

WaitingRenewal remembered(const RememberedCard& card, Kind kind, const std::string& pair) {
    WaitingRenewal waiting{kind, pair, {}, {}, 0};
    const RememberedRenewal* renewal = card.renewal(kind);
    if (renewal == nullptr || renewal->pair != pair) return waiting;
    waiting.request = renewal->request;
    waiting.replaces = renewal->replaces;
    waiting.begun = renewal->begun;
    return waiting;
}

} // namespace

std::vector<WaitingRenewal> waiting_renewals(const CardStatus& status) {
    const CardFacts& facts = status.list.card;
    const RememberedCard card = Journal().card(facts.state ? facts.state->serial : "");
    std::vector<WaitingRenewal> waiting;
    for (const ListedPair& listed : status.list.pending)
        waiting.push_back(remembered(card, listed.pair.kind, listed.pair.id));
    if (status.services_pending) waiting.push_back(remembered(card, Kind::services, ZV_OWN_PAIR));
    return waiting;
}

} // namespace zvhost
