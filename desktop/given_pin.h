#pragma once

#include "host/choice.h"

#include <string>

namespace desktop {

// The PIN that was typed while a card was shown, for that card alone.
class GivenPin : public zvhost::PinSource {
  public:
    // @param card       serial number of the card that was shown
    // @param final_try  it may be the last try
    GivenPin(zvhost::Pin pin, std::string card, bool final_try);

    // @throws Error where another card is in the reader
    [[nodiscard]] zvhost::Pin ask(const zvhost::CardFacts& card) override;
    [[nodiscard]] bool final_try() const override { return final_try_; }

  private:
    zvhost::Pin pin_;
    std::string card_;
    bool final_try_;
};

} // namespace desktop
