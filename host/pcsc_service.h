#pragma once

#include <string>
#include <vector>

namespace zvhost {

// A reader of the PC/SC service. The answer to reset is in upper-case hexadecimal; empty when the card gives none.
struct PcscReader {
    std::string name;
    bool card = false;
    std::string atr;
    unsigned long state = 0; // to wait with for another one, as the service counts its events
};

struct PcscService {
    bool answers = false;
    unsigned long code = 0; // of the call that failed
    std::vector<PcscReader> readers;
};

// Asks the service for its readers and the cards in them, without talking to the cards.
[[nodiscard]] PcscService ask_service();

} // namespace zvhost
