#pragma once

#include "cli/engine.h"
#include "host/card_facts.h"
#include "host/pin.h"

#include <chrono>
#include <string>

namespace cli {

// The program that asks for the PIN: what ZVRENEW_PINENTRY names, else `pinentry`.
[[nodiscard]] std::string pinentry_program();

// How long the program may take for an answer of its own, and the person for the PIN.
struct Patience {
    std::chrono::milliseconds program = std::chrono::seconds(30);
    std::chrono::milliseconds person = std::chrono::minutes(5);
};

// Has a program ask for a card's PIN, in a window or at the terminal, and checks its form; a PIN of a form that is
// refused is asked for again, as it has cost no try.
//
// @throws Error when the person gives none, or the program does not do its work
[[nodiscard]] Pin pin_from_pinentry(const std::string& program, const CardFacts& card,
                                    const Patience& patience = {});

} // namespace cli
