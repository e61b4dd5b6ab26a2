#include "simcard/common/card_folder.h"
#include "simcard/tool/commands.h"
#include "simcard/tool/object_view.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iomanip>
#include <iostream>

namespace simcard {
namespace {

using nlohmann::ordered_json;

using Row = std::vector<std::string>;

// Columns as wide as their longest text.
void print_table(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const Row& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += row[i] + std::string(widths[i] - row[i].size() + 2, ' ');
        std::cout << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
    }
}

std::string name_of(const Card& card) {
    return card.folder.filename().string();
}

ordered_json as_json(const Card& card) {
    return {{"name", name_of(card)},
            {"reader", card.reader},
            {"profile", card.profile},
            {"atr", card.atr},
            {"serial", card.serial},
            {"inserted", card.inserted},
            {"pin_tries_left", card.pin_tries_left},
            {"pin_tries_max", card.pin_tries_max}};
}

ordered_json as_json(const ObjectView& object) {
    ordered_json entry{{"class", object.object_class}, {"id", object.id}, {"label", object.label}};
    if (object.key_bits != 0) entry["key_bits"] = object.key_bits;
    if (!object.subject.empty()) entry["subject"] = object.subject;
    if (!object.ends.empty()) entry["ends"] = object.ends;
    return entry;
}

Row as_row(const Card& card) {
    const std::string tries =
        std::to_string(card.pin_tries_left) + " of " + std::to_string(card.pin_tries_max);
    return {name_of(card), card.reader, card.profile, card.serial, card.inserted ? "in" : "out", tries};
}

Row as_row(const ObjectView& object) {
    return {object.object_class, object.id,
            object.label,        object.key_bits != 0 ? std::to_string(object.key_bits) : "",
            object.ends,         object.subject};
}

void list_all(const std::filesystem::path& home, bool json) {
    std::vector<std::string> problems;
    const std::vector<Card> cards = list_cards(home, &problems);
    for (const std::string& problem : problems)
        std::cerr << problem << '\n';
    if (json) {
        ordered_json all = ordered_json::array();
        for (const Card& card : cards)
            all.push_back(as_json(card));
        std::cout << all.dump(2) << '\n';
    } else if (cards.empty()) {
        std::cout << "There is no card in " << home.string() << ".\n";
    } else {
        std::vector<Row> rows{{"NAME", "READER", "PROFILE", "SERIAL", "CARD", "PIN TRIES"}};
        for (const Card& card : cards)
            rows.push_back(as_row(card));
        print_table(rows);
    }
}

void list_one(const Card& card, const ListOptions& options) {
    const std::vector<ObjectView> objects = view_objects(card, options.pin);
    if (options.json) {
        ordered_json entry = as_json(card);
        entry["objects"] = ordered_json::array();
        for (const ObjectView& object : objects)
            entry["objects"].push_back(as_json(object));
        std::cout << entry.dump(2) << '\n';
        return;
    }
    print_table({{"NAME", "READER", "PROFILE", "SERIAL", "CARD", "PIN TRIES"}, as_row(card)});
    std::cout << '\n';
    std::vector<Row> rows{{"CLASS", "ID", "LABEL", "BITS", "ENDS", "SUBJECT"}};
    for (const ObjectView& object : objects)
        rows.push_back(as_row(object));
    print_table(rows);
    if (options.pin.text().empty()) std::cout << "\nPrivate objects are shown with --pin.\n";
}

} // namespace

void list(const ListOptions& options, const Home& home) {
    if (options.card.empty())
        list_all(home.path(), options.json);
    else
        list_one(load_card(home.card(options.card)), options);
}

} // namespace simcard
