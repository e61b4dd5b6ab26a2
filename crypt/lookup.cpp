#include "crypt/atr.h"
#include "crypt/config.h"
#include "crypt/failure.h"
#include "crypt/pcsc.h"
#include "crypt/session.h"
#include "crypt/text.h"

#include <algorithm>

namespace zvcrypt {
namespace {

// What the flags asked for afterwards are answered from.
CardEntry& last_card() {
    static auto& last = undying<CardEntry>();
    return last;
}

std::string card_atr(const std::string& name, const std::vector<SoftwareReader>& software) {
    const auto is_named = [&](const auto& reader) { return reader.name == name; };
    if (const auto own = std::find_if(software.begin(), software.end(), is_named); own != software.end())
        return own->atr;
    const auto reader = pcsc_reader(name);
    if (!reader) throw Failure(ZVC_ERR_UNKNOWN_READER, "Lettore sconosciuto: " + name);
    if (!reader->has_card) throw Failure(ZVC_ERR_NO_CARD, "Nessuna smart card nel lettore " + name);
    if (reader->atr.empty())
        throw Failure(ZVC_ERR_MUTE_CARD, "La smart card nel lettore " + name +
                                             " non risponde: controllare che sia inserita dal lato giusto");
    return reader->atr;
}

// The first entry that matches, in the order of the tables; an empty one for an unknown card.
CardEntry find_card(const std::string& atr, const std::vector<const Table*>& tables) {
    const PackedAtr packed(atr);
    for (const Table* table : tables)
        for (const auto& card : table->cards)
            if (card.pattern.matches(packed)) return card;
    return {};
}

void look_up(const char* reader, char* module, const char* ini_dir) {
    module[0] = '\0';
    last_card() = {};
    std::vector<const Table*> tables;
    if (ini_dir != nullptr) tables.push_back(&load_host_table(ini_dir));
    const Table& configuration = load_configuration();
    tables.insert(tables.end(), {&configuration, &built_in_table()});
    CardEntry card = find_card(card_atr(reader, configuration.readers), tables);
    write_text(card.module, {module, ZVC_MODULE_NAME_SIZE});
    last_card() = std::move(card);
}

} // namespace
} // namespace zvcrypt

int kvGetPKCS11FromATR(char* reader, char* module) {
    return zvcrypt::run_card_operation([&] {
        zvcrypt::require_arguments({reader, module});
        zvcrypt::look_up(reader, module, nullptr);
    });
}

int kvGetPKCS11FromATRLite(char* reader, char* module, const char* ini_dir) {
    return zvcrypt::run_card_operation([&] {
        zvcrypt::require_arguments({reader, module, ini_dir});
        zvcrypt::look_up(reader, module, ini_dir);
    });
}

int kvIsCNSINCARD() {
    return zvcrypt::last_card().cns ? 1 : 0;
}

int kvIsTOUCHSIGN() {
    return zvcrypt::last_card().touch_sign ? 1 : 0;
}
