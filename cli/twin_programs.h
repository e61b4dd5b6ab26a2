#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace cli {

// The programs of the simulated card.
struct SimulatedCard {
    std::string tool;   // path of zvsimcard-tool
    std::string module; // path of the PKCS#11 module
};

// Finds them. @throws Error that says where they come from
[[nodiscard]] SimulatedCard find_simulated_card();

// Names the folder of a rehearsal, for this program when it runs in one: its log goes there.
inline constexpr const char* REHEARSAL_FOLDER = "ZVRENEW_REHEARSAL";
inline constexpr const char* REHEARSAL_LOG = "zvrenew.log";

// The environment of programs that are to work on the simulated cards in that folder and nowhere else.
[[nodiscard]] std::vector<std::string> environment_in(const std::filesystem::path& folder);

} // namespace cli
