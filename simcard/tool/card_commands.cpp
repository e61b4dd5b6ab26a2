#include "simcard/authority/errors.h"
#include "simcard/common/card_folder.h"
#include "simcard/tool/as_made.h"
#include "simcard/tool/card_plan.h"
#include "simcard/tool/commands.h"

#include <functional>
#include <iostream>
#include <memory>

namespace fs = std::filesystem;

namespace simcard {
namespace {

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

void add(CLI::App& program, const Home& home, const char* name, const char* what,
         const std::function<void(const fs::path&)>& act) {
    CLI::App& command = *program.add_subcommand(name, what);
    const auto card = std::make_shared<std::string>();
    command.add_option("card", *card, "Name of the card")->required();
    command.callback([card, act, &home] { act(home.card(*card)); });
}

} // namespace

void add_card_commands(CLI::App& program, const Home& home) {
    add(program, home, "reset", "Puts a card's objects and PIN back as they were made", reset);
    add(program, home, "remove", "Deletes a card", remove);
    add(program, home, "eject", "Takes a card out of its reader", eject);
    add(program, home, "insert", "Puts a card back into its reader", insert);
}

} // namespace simcard
