#include "host/card_table.h"

#include "host/environment.h"
#include "zvCrypt.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <sstream>
#include <string_view>

namespace zvhost {
namespace {

constexpr const char* SYSTEM_TABLE = ZV_SYSCONFDIR "/" ZVC_CONFIGURATION_FILE;

bool is_there(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0;
}

std::string users_table() {
    if (const std::string base = environment("XDG_CONFIG_HOME"); base.starts_with('/'))
        return base + "/" ZVC_CONFIGURATION_FILE;
    const std::string home = environment("HOME");
    return home.empty() ? home : home + "/" ZVC_CONFIGURATION_HOME "/" ZVC_CONFIGURATION_FILE;
}

// Those that are there, the one that counts first.
std::vector<std::string> table_files() {
    std::vector<std::string> files;
    const std::string named = environment(ZVC_CONFIGURATION_VARIABLE);
    if (!named.empty()) files.push_back(named);
    for (const std::string& file : {users_table(), std::string(SYSTEM_TABLE)})
        if (!file.empty() && is_there(file)) files.push_back(file);
    return files;
}

std::string_view without_blanks(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::string plain_pattern(std::string_view text) {
    std::string pattern;
    for (const char c : text)
        if (c == '.' || c == '?' || c == 'x' || c == 'X')
            pattern += '.';
        else if (std::isxdigit(static_cast<unsigned char>(c)) != 0)
            pattern += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return pattern;
}

bool fits(const std::string& pattern, const std::string& atr) {
    return std::equal(pattern.begin(), pattern.end(), atr.begin(), atr.end(),
                      [](char wanted, char seen) { return wanted == '.' || wanted == seen; });
}

void begin_entry(CardTable& table, std::string_view title, int line, TableEntry*& entry) {
    title = without_blanks(title.substr(0, title.find(']')));
    const auto blank = std::min(title.find(' '), title.size());
    auto& list = title.substr(0, blank) == "reader" ? table.readers : table.cards;
    list.push_back({std::string(without_blanks(title.substr(blank))), line, {}, {}});
    entry = &list.back();
}

void set_key(TableEntry& entry, std::string_view line) {
    const auto sign = line.find_first_of("=:");
    if (sign == std::string_view::npos) return;
    const auto key = without_blanks(line.substr(0, sign));
    auto value = line.substr(sign + 1);
    value = without_blanks(value.substr(0, std::min(value.find(" ;"), value.size())));
    if (key == "atr") entry.atr = plain_pattern(value);
    if (key == "module") entry.module = value;
    if (key == "name") entry.name = value;
}

} // namespace

CardTable card_table_in(const std::string& text) {
    CardTable table;
    TableEntry* entry = nullptr;
    std::istringstream lines(text);
    int number = 0;
    for (std::string whole; std::getline(lines, whole);) {
        ++number;
        const std::string_view line = without_blanks(whole);
        if (line.starts_with('['))
            begin_entry(table, line.substr(1), number, entry);
        else if (entry != nullptr && !line.starts_with(';') && !line.starts_with('#'))
            set_key(*entry, line);
    }
    return table;
}

CardTable read_card_table() {
    const std::vector<std::string> files = table_files();
    if (files.empty()) return {};
    std::ostringstream text;
    if (files.front() != "/dev/null") text << std::ifstream(files.front()).rdbuf();
    CardTable table = card_table_in(text.str());
    table.file = files.front();
    table.unread.assign(files.begin() + 1, files.end());
    return table;
}

std::vector<std::string> card_table_places() {
    return {"~/" ZVC_CONFIGURATION_HOME "/" ZVC_CONFIGURATION_FILE, SYSTEM_TABLE};
}

const TableEntry* CardTable::entry_for(const std::string& atr) const {
    const auto found = std::find_if(cards.begin(), cards.end(),
                                    [&](const TableEntry& entry) { return fits(entry.atr, atr); });
    return found == cards.end() ? nullptr : &*found;
}

const TableEntry* CardTable::software_reader(const std::string& name) const {
    const auto found = std::find_if(readers.begin(), readers.end(),
                                    [&](const TableEntry& entry) { return entry.name == name; });
    return found == readers.end() ? nullptr : &*found;
}

} // namespace zvhost
