#include "cli/card_json.h"

#include <fmt/chrono.h>

namespace cli {

Json card_json(const OpenedCard& card) {
    Json facts = place_json(card.place);
    facts.update(state_json(card.state));
    return facts;
}

Report about_card(OpenedCard& card, const std::function<Report()>& work) {
    const auto leave = [&](Stop stop) {
        if (stop.exit == Exit::failed && !stop.card) stop.card = card_now(card).contents;
        if (stop.exit == Exit::failed && stop.advice.empty())
            stop.advice.push_back({"repeat", "Leave the card in the reader and run the same command again."});
        stop.about(card_json(card));
        return stop;
    };
    try {
        return work();
    } catch (const Stop& stop) {
        throw leave(stop);
    } catch (const std::exception& error) {
        throw leave({Exit::failed, error.what()});
    }
}

Json pending_json(const Inventory& inventory) {
    Json list = Json::array();
    for (const PendingPair& pair : inventory.pending)
        list.push_back({{"kind", kind_name(pair.kind)}, {"id", pair.id}});
    return list;
}

Json name_json(const DistinguishedName& name) {
    Json list = Json::array();
    for (const NameAttribute& attribute : name.attributes())
        list.push_back({{attribute.name, attribute.value}});
    return list;
}

std::string instant(std::time_t time) {
    return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(time));
}

Json proposal_json(const Proposal& proposal) {
    if (proposal.none_free) return {{"none_free", true}};
    if (proposal.id.empty()) return nullptr;
    return {{"id", proposal.id}};
}

} // namespace cli
