#pragma once

#include "cli/changing_options.h"
#include "cli/engine.h"
#include "cli/json.h"
#include "cli/twin.h"
#include "host/error.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace cli {

// A step of a renewal, as it went on the twin.
struct RehearsedStep {
    std::string name;    // "renew" or "issue"
    std::string command; // what a person would type; empty for what is the authority's
    ChildResult result;
};

// A renewal on a simulated twin of a card.
struct Rehearsal {
    PublicCard card;
    Kind kind = Kind::signature;
    std::vector<RehearsedStep> steps; // up to the one that did not reach its aim
    Json before;                      // the twin's objects
    Json after;

    // What the last step ended with.
    [[nodiscard]] Exit exit() const;
};

// Makes the twin and renews on it. @throws Error
[[nodiscard]] Rehearsal rehearse(const RehearseOptions& options, PublicCard card,
                                 const SimulatedCard& programs, const HeldSignals& signals);

[[nodiscard]] std::string in_words(const Rehearsal& rehearsal);
[[nodiscard]] Json as_json(const Rehearsal& rehearsal);
[[nodiscard]] std::vector<Advice> advice_on(const Rehearsal& rehearsal);

} // namespace cli
