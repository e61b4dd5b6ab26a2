#pragma once

#include "host/choice.h"

#include <optional>
#include <string>

namespace zvhost {

// Asks for the PIN once and gives it to the same card again, as often as that is opened. One that the card refused ends
// everything, so it is not given again.
class KeptPin : public PinSource {
  public:
    explicit KeptPin(PinSource& source) : source_(source) {}

    [[nodiscard]] std::optional<Pin> at_once() override;
    [[nodiscard]] Pin ask(const CardFacts& card) override;
    void refused() override { source_.refused(); }
    [[nodiscard]] bool final_try() const override { return source_.final_try(); }

    // The card that it was proved with: it goes to no other.
    void bind(const std::string& serial) { serial_ = serial; }

  private:
    PinSource& source_;
    std::optional<Pin> pin_;
    std::optional<std::string> serial_;
};

} // namespace zvhost
