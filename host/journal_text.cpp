#include "host/journal_text.h"

#include <nlohmann/json.hpp>

#include <cstdint>

namespace zvhost {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* VERSION_KEY = "zvrenew_journal";
constexpr int VERSION = 1;

// No moment after it has a year of four digits.
constexpr std::int64_t LAST_MOMENT = 253402300799;

// What it has of a name; nothing when that is something else or not there.
std::string text_in(const Json& json, const char* name) {
    const auto found = json.find(name);
    return found != json.end() && found->is_string() ? found->get<std::string>() : std::string();
}

bool flag_in(const Json& json, const char* name) {
    const auto found = json.find(name);
    return found != json.end() && found->is_boolean() && found->get<bool>();
}

std::int64_t number_in(const Json& json, const char* name) {
    const auto found = json.find(name);
    if (found == json.end() || !found->is_number_integer()) return 0;
    const auto number = found->get<std::int64_t>();
    return number < 0 || number > LAST_MOMENT ? 0 : number;
}

template <class Thing>
std::vector<Thing> entries_in(const Json& json, const char* name, Thing (*read)(const Json&)) {
    std::vector<Thing> list;
    if (const auto found = json.find(name); found != json.end() && found->is_array())
        for (const Json& one : *found)
            if (one.is_object()) list.push_back(read(one));
    return list;
}

template <class Thing> Json array_of(const std::vector<Thing>& list, Json (*write)(const Thing&)) {
    Json array = Json::array();
    for (const Thing& one : list)
        array.push_back(write(one));
    return array;
}

zv::Kind kind_in(const Json& json) {
    const auto name = text_in(json, "kind");
    for (const zv::KindRow& row : zv::KINDS)
        if (name == row.name) return row.id;
    return zv::Kind::signature;
}

Json certificate_json(const RememberedCertificate& one) {
    return {{"kind", zv::kind_row(one.kind).name},
            {"id", one.id},
            {"serial", one.serial},
            {"ends", one.ends},
            {"replaced", one.replaced},
            {"told_at", one.told_at}};
}

RememberedCertificate certificate_in(const Json& json) {
    return {kind_in(json),           text_in(json, "id"),       text_in(json, "serial"),
            number_in(json, "ends"), flag_in(json, "replaced"), number_in(json, "told_at")};
}

Json pair_json(const RememberedPair& pair) {
    return {{"kind", zv::kind_row(pair.kind).name}, {"id", pair.id}};
}

RememberedPair pair_in(const Json& json) {
    return {kind_in(json), text_in(json, "id")};
}

Json renewal_json(const RememberedRenewal& renewal) {
    return {{"kind", zv::kind_row(renewal.kind).name},
            {"pair", renewal.pair},
            {"step", renewal.step},
            {"request", renewal.request},
            {"replaces", renewal.replaces},
            {"replaced_serial", renewal.replaced_serial},
            {"begun", renewal.begun}};
}

RememberedRenewal renewal_in(const Json& json) {
    return {kind_in(json),
            text_in(json, "pair"),
            text_in(json, "step"),
            text_in(json, "request"),
            text_in(json, "replaces"),
            text_in(json, "replaced_serial"),
            number_in(json, "begun")};
}

RememberedCard card_in(const Json& json) {
    RememberedCard card;
    card.serial = text_in(json, "card");
    card.services_card = flag_in(json, "services_card");
    card.seen_at = number_in(json, "seen_at");
    card.certificates = entries_in(json, "certificates", certificate_in);
    card.pending = entries_in(json, "pending", pair_in);
    card.renewals = entries_in(json, "renewals", renewal_in);
    if (const auto took = number_in(json, "key_pair_took_ms"); took > 0)
        card.key_pair_took = std::chrono::milliseconds(took);
    return card;
}

} // namespace

// Identifiers may be no UTF-8.
std::string as_text(const RememberedCard& card) {
    Json json = {{VERSION_KEY, VERSION},
                 {"card", card.serial},
                 {"services_card", card.services_card},
                 {"seen_at", card.seen_at},
                 {"certificates", array_of(card.certificates, certificate_json)},
                 {"pending", array_of(card.pending, pair_json)},
                 {"renewals", array_of(card.renewals, renewal_json)}};
    if (card.key_pair_took) json["key_pair_took_ms"] = card.key_pair_took->count();
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::optional<JournalEntry> journal_entry(std::string_view text) {
    const Json json = Json::parse(text, nullptr, false);
    if (!json.is_object()) return std::nullopt;
    const auto version = number_in(json, VERSION_KEY);
    if (version > VERSION) return JournalEntry{{}, true};
    if (version != VERSION) return std::nullopt;
    return JournalEntry{card_in(json), false};
}

} // namespace zvhost
