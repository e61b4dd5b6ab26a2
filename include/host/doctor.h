#pragma once

#include "host/card_status.h"
#include "host/sentence.h"

#include <ctime>
#include <string>
#include <vector>

namespace zvhost {

// How it stands with what was looked at. `unknown`: it could not be told here.
enum class Health { right, warning, wrong, unknown };

// In a word for a program: "right", "warning", "wrong", "unknown".
[[nodiscard]] const char* word_for(Health health);

// One thing that was looked at.
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

    // Whether a finding is wrong; warnings, and what could not be told, do not count.
    [[nodiscard]] bool any_wrong() const;
};

// Looks at all that a renewal needs, from the readers' service to the log: PC/SC (readers, ATR of ISO/IEC 7816-3) and the
// cards' PKCS#11 modules. No PIN is asked for, no login made and nothing changed, on the cards or on this computer; a
// module is called in a process of its own, so that one that crashes or hangs is a finding. It takes as long as the cards
// need to be read.
//
// @param module_dir  folder of the modules; empty: they are searched for
// @return the findings, in the order in which one thing needs the other. What fails is one of them, nothing is thrown for it
[[nodiscard]] Examination examine(const std::string& module_dir);

} // namespace zvhost
