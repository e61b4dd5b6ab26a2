#pragma once

#include "host/choice.h"
#include "simcard/tool/personalise.h"

namespace zvtest {

// The PIN that test cards have.
struct GivenPin : zvhost::PinSource {
    [[nodiscard]] zvhost::Pin ask(const zvhost::CardFacts& /*card*/) override {
        zvhost::Pin pin;
        for (const char c : std::string(simcard::DEFAULT_PIN))
            pin.add(c);
        return pin;
    }
};

} // namespace zvtest
