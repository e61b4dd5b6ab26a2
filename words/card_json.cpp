#include "words/card_json.h"

#include <fmt/chrono.h>
#include <nlohmann/json.hpp>

namespace words {

using zvhost::CardFacts, zvhost::CardState, zvhost::DistinguishedName, zvhost::Held, zvhost::NameAttribute,
    zvhost::OnCard, zvhost::Proposal;

Json as_json(const CardFacts& card) {
    Json facts = {{"reader", card.reader}};
    if (card.module.empty()) return facts;
    facts.update({{"module", card.module}, {"services_card", card.services_card}});
    if (card.state) facts.update(as_json(*card.state));
    return facts;
}

Json as_json(const CardState& state) {
    return {{"label", state.label},
            {"serial", state.serial},
            {"pin", state.pin ? Json(word_for(*state.pin)) : Json()},
            {"keypad", state.keypad}};
}

Json as_json(const OnCard& contents) {
    if (contents.untouched || !contents.problem.empty()) return nullptr;
    Json list = Json::array();
    for (const Held& one : contents.held)
        list.push_back({{"id", one.id},
                        {"certificates", one.certificates},
                        {"public_key", one.public_key},
                        {"private_key", one.private_key}});
    return list;
}

Json as_json(const DistinguishedName& name) {
    Json list = Json::array();
    for (const NameAttribute& attribute : name.attributes())
        list.push_back({{attribute.name, attribute.value}});
    return list;
}

Json as_json(const Proposal& proposal) {
    if (proposal.none_free) return {{"none_free", true}};
    if (proposal.id.empty()) return nullptr;
    return {{"id", proposal.id}};
}

std::string instant(std::time_t time) {
    return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(time));
}

Json or_null(const std::string& text) {
    return text.empty() ? Json() : Json(text);
}

} // namespace words
