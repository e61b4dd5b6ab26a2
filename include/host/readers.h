#pragma once

#include "host/card_facts.h"
#include "host/sentence.h"

#include <optional>
#include <string>
#include <vector>

namespace zvhost {

// A reader and the card in it, as far as the answer to reset tells.
struct Reader {
    std::string name;
    bool card = false;
    std::string module;            // file name of the card's module; empty for an unknown card
    bool services = false;         // a national services card
    std::string state = "no card"; // "known card", "unknown card", "mute card", "unreachable", for a program
    Sentence problem;              // why nothing is known of the card; empty when there is nothing to say
};

// A reader, and what the card in it says of itself.
struct ReaderFacts {
    Reader reader;
    Sentence problem;        // why nothing is known of the card, or not all
    std::string module_path; // empty: there is no such module
    std::optional<CardState> state;
};

// What there is, and what can be done.
struct Readers {
    std::vector<ReaderFacts> readers; // in the crypto library's order
    std::vector<Advice> advice;
};

// Looks into every reader, without a login. @throws Error when the readers cannot be listed
[[nodiscard]] Readers look_into_readers(const std::string& module_dir);

// Which of them to show to somebody who names none: the one that was chosen before, as long as it is there; else the one
// that holds a card, one that holds a known card, one that holds any, the first.
//
// @param card  that card's serial number; empty: none is meant
// @return its name; empty where there is none
[[nodiscard]] std::string reader_of_interest(const std::vector<ReaderFacts>& readers,
                                             const std::string& chosen, const std::string& card);

} // namespace zvhost
