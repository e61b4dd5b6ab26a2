#pragma once

#include "host/card_status.h"
#include "host/sentence.h"

#include <ctime>
#include <string>
#include <vector>

namespace zvhost {

// How it stands with what was looked at. `unknown`: it could not be told here.
enum class Health { right, warning, wrong, unknown };

[[nodiscard]] const char* word_for(Health health);

struct Finding {
    std::string topic; // never changes its meaning; docs/json.md lists all
    Health health = Health::right;
    Sentence says;
    std::vector<Advice> advice = {};
};

// What the doctor saw.
struct Examination {
    std::vector<Finding> findings;
    std::vector<CardStatus> cards;     // what the cards show to everybody
    std::vector<std::string> personal; // values and words that their certificates say of their holders

    [[nodiscard]] bool any_wrong() const;
};

// Looks at all that a renewal needs, from the readers' service to the log. No PIN is asked for and no login made; a
// module is called in a process of its own, so that one that crashes or hangs is a finding.
//
// @param module_dir  folder of the modules; empty: they are searched for
[[nodiscard]] Examination examine(const std::string& module_dir);

} // namespace zvhost
