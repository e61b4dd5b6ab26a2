#pragma once

#include <filesystem>
#include <string>

namespace simcard {

// The lines of a zvcrypt.conf that bring in the cards of a folder: a software reader for each reader that
// has a card, in it or taken out, and the module for each profile's ATR: the simulated card's, or a copy of it under
// another name.
[[nodiscard]] std::string reader_configuration(const std::filesystem::path& home,
                                               const std::string& module = {});

} // namespace simcard
