#pragma once

#include <string>

namespace zvhost {

// The user's folders, as the desktop standards place them; empty without a home. As for the log, the home is the one that
// the user database has.

// $XDG_STATE_HOME, else ~/.local/state.
[[nodiscard]] std::string state_folder();
// $XDG_CONFIG_HOME, else ~/.config.
[[nodiscard]] std::string configuration_folder();

} // namespace zvhost
