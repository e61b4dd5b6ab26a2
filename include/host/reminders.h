#pragma once

#include "host/journal.h"
#include "host/sentence.h"

#include <ctime>
#include <string>
#include <vector>

namespace zvhost {

// A certificate that its holder is to be reminded of.
struct Reminder {
    std::string card; // its serial number
    std::time_t seen_at = 0;
    RememberedCertificate certificate;
    bool ended = false;
    bool under_way = false; // its renewal is
    Sentence title;
    Sentence says; // what ends when, and what to do about it
};

// What this computer's journal knows of that ends within so many days or has ended, was not replaced, and was not told of
// in the last week. Neither a card nor a reader is needed, and nothing is changed.
//
// @param days  as in `status`, 0 or more
// @param now   seconds since 1970, UTC
// @return empty when there is nothing to tell, and when the journal cannot be read
[[nodiscard]] std::vector<Reminder> reminders(const Journal& journal, int days, std::time_t now);

// Remembers that the holder was told at that time. Where the journal cannot be written journal_problem tells it, and the
// holder is reminded again the next time.
void note_told(const Journal& journal, const Reminder& reminder, std::time_t now);

} // namespace zvhost
