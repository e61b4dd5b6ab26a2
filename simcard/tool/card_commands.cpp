#include "simcard/authority/errors.h"
#include "simcard/common/card_folder.h"
#include "simcard/tool/as_made.h"
#include "simcard/tool/commands.h"

#include <iostream>

namespace fs = std::filesystem;

namespace simcard {

void reset(const fs::path& folder) {
    put_back_as_made(folder);
    std::cout << "The card \"" << folder.filename().string() << "\" is as it was made.\n";
}

void remove(const fs::path& folder) {
    fs::remove_all(folder);
    std::cout << "Removed the card \"" << folder.filename().string() << "\".\n";
}

void eject(const fs::path& folder) {
    update_card(folder, [](Card& card) { card.inserted = false; });
    std::cout << "The card \"" << folder.filename().string() << "\" is out of its reader.\n";
}

void insert(const fs::path& folder) {
    update_card(folder, [&](Card& card) {
        if (card.inserted) throw Refusal("The card is in its reader already.");
        if (holds_a_card(folder.parent_path(), card.reader))
            throw Refusal("The reader \"" + card.reader + "\" holds another card: take it out first.");
        card.inserted = true;
        ++card.insertions;
    });
    std::cout << "The card \"" << folder.filename().string() << "\" is in its reader.\n";
}

} // namespace simcard
