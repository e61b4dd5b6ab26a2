#pragma once

#include "host/card_facts.h"
#include "host/pin.h"
#include "host/sentence.h"

#include <functional>
#include <optional>
#include <string>

namespace zvhost {

// Which card is meant, and where its module is.
struct CardChoice {
    std::string reader;     // its whole name; empty: the only one that holds a known card
    std::string module_dir; // folder of the cards' PKCS#11 modules; empty: searched for
    // Waits a moment where a reader or a card is missing, and says whether to look again. None: the work ends at once. A
    // copy of it serves one search, and is gone when that ends.
    std::function<bool(const Sentence& missing)> wait;
};

// Where the PIN comes from. One is asked for once for each card that is opened, and is given to no other.
class PinSource {
  public:
    PinSource() = default;
    virtual ~PinSource() = default;
    PinSource(const PinSource&) = delete;
    PinSource& operator=(const PinSource&) = delete;

    // A PIN that is known before a card is looked for: one that is refused for its form asks nothing of the card.
    [[nodiscard]] virtual std::optional<Pin> at_once() { return std::nullopt; }
    // The PIN of that card, which has been found and says how many tries are left. @throws Error
    [[nodiscard]] virtual Pin ask(const CardFacts& card) = 0;
    // The card refused that PIN: it is not to be given again.
    virtual void refused() {}
    // Whether it may be the last try before the card locks.
    [[nodiscard]] virtual bool final_try() const { return false; }
};

} // namespace zvhost
