#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace simcard {

// What makes a SoftHSM token a card in a reader. It stands in the card's folder in `card.ini`, one
// "key = value" a line, under the names of the members; a line that starts with '#' or ';' is a comment, and so is
// what stands behind a blank and ';'.
struct Card {
    std::filesystem::path folder; // not in the file
    std::string reader;           // name of the reader that holds the card, at most 64 bytes
    std::string atr;              // answer to reset, in hexadecimal
    std::string serial;           // serial number of the card, at most 16 bytes
    std::string profile;          // kind of card
    std::string label;            // at most 32 bytes
    std::string token;            // SoftHSM's own serial number of the token
    unsigned long pin_tries_left = 3;
    unsigned long pin_tries_max = 3;
    bool inserted = true;         // "yes" or "no"
    unsigned long insertions = 0; // grows each time the card is put in: what was open before is void
    unsigned long latency_us = 0; // how long the card takes for every call, in microseconds
    unsigned long capacity = 0;   // how many objects fit; 0 is no limit
    // How many bytes of objects still fit; counted while it is given, no limit else.
    std::optional<unsigned long> memory_left;
    // Private keys whose CKA_ID begins so want the PIN before each signature; empty for none.
    std::string pin_each_signature;
    std::string signature_pin; // what those keys want; empty for the user's PIN
    bool keypad = false; // the token's flags say that the reader has one; a PIN sent as text is taken as ever
    // Lines under other names, kept as they are.
    std::vector<std::pair<std::string, std::string>> others;

    [[nodiscard]] bool operator==(const Card&) const = default;
};

// Reads the text of a card.ini; a missing key keeps its default. @throws CardProblem that names the line.
[[nodiscard]] Card parse_card(std::string_view text);

// The text of a card's card.ini. @throws CardProblem when a value is too long or has a line break.
[[nodiscard]] std::string card_text(const Card& card);

} // namespace simcard
