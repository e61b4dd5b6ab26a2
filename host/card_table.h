#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zvhost {

// An entry of a configuration of the card table.
struct TableEntry {
    std::string name; // the one in its title
    int line = 0;     // where it begins
    std::string atr;  // pattern, upper-case, '.' for any digit
    std::string module;
};

// The configuration that counts, as far as it can be read: what is malformed is left out, the crypto library refuses it.
struct CardTable {
    std::string file; // empty: there is none
    std::vector<TableEntry> cards;
    std::vector<TableEntry> readers; // software readers, by name
    std::vector<std::string> unread; // files that would count if that one was not there

    // The first entry for a card; null when there is none.
    [[nodiscard]] const TableEntry* entry_for(const std::string& atr) const;
    [[nodiscard]] const TableEntry* software_reader(const std::string& name) const;
};

[[nodiscard]] CardTable read_card_table();
[[nodiscard]] CardTable card_table_in(const std::string& text);

// Where a person puts such a file: the user's own, the system's.
[[nodiscard]] std::vector<std::string> card_table_places();

} // namespace zvhost
