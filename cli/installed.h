#pragma once

#include "cli/install_plan.h"
#include "cli/json.h"
#include "cli/proof.h"

#include <string>
#include <vector>

namespace cli {

// A certificate that was installed and proved.
struct Installed {
    CardFacts card;
    InstallPlan plan;
    std::string backup; // file with the old certificate; empty: there is none
    Proof proof;
    OnCard now;
    bool mark_left = false; // a services card still bears the mark of the request
};

[[nodiscard]] std::string in_words(const Installed& installed);
[[nodiscard]] Json as_json(const Installed& installed);
[[nodiscard]] std::vector<Advice> advice_on(const Installed& installed);

// What an installation leaves: the mark of a services card's request, identifiers of what a removal did not take.
[[nodiscard]] Advice say_mark_left();
[[nodiscard]] Advice say_left(const std::vector<std::string>& left);

} // namespace cli
