#include "simcard/tool/reader_configuration.h"

#include "simcard/common/card_folder.h"
#include "simcard/tool/profile.h"

#include <map>
#include <set>

namespace simcard {
namespace {

std::string card_section(const Profile& profile, const std::string& module) {
    std::string text = "[card simulated " + std::string(profile.name) + "]\natr = " + profile.atr +
                       "\nmodule = " + (module.empty() ? ZVSIMCARD_MODULE : module) + "\n";
    if (*profile.flags != '\0') text += "flags = " + std::string(profile.flags) + "\n";
    return text + "\n";
}

std::string reader_section(const Card& card) {
    return "[reader " + card.folder.filename().string() + "]\nname = " + card.reader + "\natr = " + card.atr +
           "\n\n";
}

} // namespace

std::string reader_configuration(const std::filesystem::path& home, const std::string& module) {
    std::map<std::string, Card> readers; // of two cards that share a reader, the one that is in it
    for (Card& card : list_cards(home))
        if (Card& known = readers[card.reader]; known.reader.empty() || card.inserted)
            known = std::move(card);
    std::set<std::string> used;
    std::string text;
    for (const auto& [name, card] : readers) {
        text += reader_section(card);
        used.insert(card.profile);
    }
    std::string cards;
    for (const Profile& profile : profiles())
        if (used.contains(profile.name)) cards += card_section(profile, module);
    return cards + text;
}

} // namespace simcard
