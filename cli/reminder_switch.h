#pragma once

#include "cli/engine.h"
#include "host/error.h"

#include <string>
#include <vector>

namespace cli {

// What reminds the user from now on.
struct Switched {
    std::string by;   // "systemd", "autostart"; empty: nothing
    std::string file; // the desktop's entry; empty: there is none
    Sentence says;
    std::vector<Advice> advice;
};

// Has the user's systemd run the reminders each day; where it does not run, or does not know their timer, the desktop
// at each of its starts. @throws Error
[[nodiscard]] Switched turn_reminders_on();

// Takes back both. @throws Error
[[nodiscard]] Switched turn_reminders_off();

} // namespace cli
