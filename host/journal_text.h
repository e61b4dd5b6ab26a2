#pragma once

#include "host/journal.h"

#include <string>
#include <string_view>

namespace zvhost {

// A card's entry as the journal's file has it.
[[nodiscard]] std::string as_text(const RememberedCard& card);

// What a file has. `newer`: a later version of this program wrote it.
struct JournalEntry {
    RememberedCard card;
    bool newer = false;
};

// Reads a file's text; none when it is damaged, or no entry.
[[nodiscard]] std::optional<JournalEntry> journal_entry(std::string_view text);

} // namespace zvhost
