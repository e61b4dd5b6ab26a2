#include "atr.h"
#include "config.h"
#include "failure.h"
#include "pcsc.h"
#include "session.h"
#include "text.h"

#include <algorithm>

namespace zvcrypt {
namespace {

// What the flags asked for afterwards are answered from.
CardEntry& lastCard() {
    static auto& last = undying<CardEntry>();
    return last;
}

std::string cardAtr(const std::string& name, const std::vector<SoftwareReader>& software) {
    const auto isNamed = [&](const auto& reader) { return reader.name == name; };
    if (const auto own = std::find_if(software.begin(), software.end(), isNamed); own != software.end())
        return own->atr;
    const auto reader = pcscReader(name);
    if (!reader) throw Failure(ZVC_ERR_UNKNOWN_READER, "Lettore sconosciuto: " + name);
    if (!reader->hasCard) throw Failure(ZVC_ERR_NO_CARD, "Nessuna smart card nel lettore " + name);
    if (reader->atr.empty())
        throw Failure(ZVC_ERR_MUTE_CARD, "La smart card nel lettore " + name +
                                             " non risponde: controllare che sia inserita dal lato giusto");
    return reader->atr;
}

// The first entry that matches, in the order of the tables; an empty one for an unknown card.
CardEntry findCard(const std::string& atr, const std::vector<const Table*>& tables) {
    const PackedAtr packed(atr);
    for (const Table* table : tables)
        for (const auto& card : table->cards)
            if (card.pattern.matches(packed)) return card;
    return {};
}

void lookUp(const char* reader, char* module, const char* iniDir) {
    module[0] = '\0';
    lastCard() = {};
    std::vector<const Table*> tables;
    if (iniDir != nullptr) tables.push_back(&loadHostTable(iniDir));
    const Table& configuration = loadConfiguration();
    tables.insert(tables.end(), {&configuration, &builtInTable()});
    CardEntry card = findCard(cardAtr(reader, configuration.readers), tables);
    writeText(card.module, {module, ZVC_MODULE_NAME_SIZE});
    lastCard() = std::move(card);
}

} // namespace
} // namespace zvcrypt

int kvGetPKCS11FromATR(char* reader, char* module) {
    return zvcrypt::runCardOperation([&] {
        zvcrypt::requireArguments({reader, module});
        zvcrypt::lookUp(reader, module, nullptr);
    });
}

int kvGetPKCS11FromATRLite(char* reader, char* module, const char* iniDir) {
    return zvcrypt::runCardOperation([&] {
        zvcrypt::requireArguments({reader, module, iniDir});
        zvcrypt::lookUp(reader, module, iniDir);
    });
}

int kvIsCNSINCARD() {
    return zvcrypt::lastCard().cns ? 1 : 0;
}

int kvIsTOUCHSIGN() {
    return zvcrypt::lastCard().touchSign ? 1 : 0;
}
