#pragma once

#include "simcard/module/call.h"

#include <string_view>
#include <variant>
#include <vector>

namespace simcard {

// What goes wrong in the answer of a call that was done.
enum class Absurdity {
    count,       // counts are huge
    length,      // lengths go past the caller's buffers
    unavailable, // lengths and counts are CK_UNAVAILABLE_INFORMATION
    text,        // texts fill their fields and buffers and have no end
    brief,       // a byte is missing of what was made, all of the last attribute that was asked for
};

// What a rule does to the call that it is for.
namespace deed {
struct Answer {
    CK_RV code;
};
struct DoAndAnswer {
    CK_RV code;
};
struct TakeOut {
    std::optional<CK_SLOT_ID> slot; // the call's own when there is none
};
struct PutBack {
    std::optional<CK_SLOT_ID> slot;
};
struct Delay {
    CK_ULONG microseconds;
};
struct KillBefore {};
struct KillAfter {};
} // namespace deed

using Deed = std::variant<deed::Answer, deed::DoAndAnswer, Absurdity, deed::TakeOut, deed::PutBack,
                          deed::Delay, deed::KillBefore, deed::KillAfter>;

// A rule and how many calls it has seen: see zvsimcard_add_rules for its text.
struct Rule {
    std::optional<Function> function; // none: any function
    unsigned long first = 1;          // the call that it is for, counted from 1
    bool and_later = false;           // and for all later ones
    Deed deed;
    unsigned long seen = 0;

    // Counts a call and says whether the rule is for it.
    [[nodiscard]] bool is_for(Function called);
    [[nodiscard]] bool has_acted() const { return seen >= first; }
};

struct ParsedRules {
    std::vector<Rule> rules;
    // Number, from 1, of the first rule that is not understood; 0 when all are.
    int not_understood = 0;
};

// Reads rules, separated by semicolons or line ends.
[[nodiscard]] ParsedRules parse_rules(std::string_view text);

} // namespace simcard
