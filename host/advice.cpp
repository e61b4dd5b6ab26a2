#include "host/advice.h"

#include "host/card_table.h"

namespace zvhost {

std::vector<std::string> identifiers_of(Kind kind) {
    std::vector<std::string> ids;
    for (const char digit : zv::RENEWED_DIGITS)
        ids.push_back(kind_row(kind).series + std::string{digit});
    return ids;
}

Values series_of(Kind kind) {
    std::vector<std::string> ids = identifiers_of(kind);
    std::string last = ids.back();
    ids.pop_back();
    return {{"kind", kind}, {"first", std::move(ids)}, {"last", std::move(last)}};
}

Advice free_an_identifier(Kind kind) {
    return {"free-identifier",
            {"free-identifier", series_of(kind)},
            {{"kind", kind}, {"identifiers", identifiers_of(kind)}}};
}

Advice make_room() {
    return {"make-room", {"card-full", {}}};
}

Advice leave_to_card_software(const std::string& pair) {
    const Values about = {{"pair", pair}};
    return {"pin-each-signature", {"pin-each-signature", about}, about};
}

Advice give_key_the_pin(const std::string& key) {
    const Values about = {{"key", key}};
    return {"signature-pin", {"key-wants-own-pin", about}, about};
}

Advice enter_card() {
    return {"add-card", {"enter-card", {{"folder", ZV_SYSCONFDIR}}}, {{"files", card_table_places()}}};
}

Advice start_service() {
    return {"start-service", {"start-service", {}}, {{"service", "pcscd"}}};
}

} // namespace zvhost
