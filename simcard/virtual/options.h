#pragma once

#include "simcard/virtual/applet.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace simcard {

// The command line cannot be followed. One sentence for a person.
class WrongUsage : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// In bytes (ISO/IEC 7816-3).
inline constexpr std::size_t LONGEST_ATR = 33;

// What the program was told.
struct Options {
    std::uint16_t port = 0x9001;
    std::vector<std::uint8_t> atr = {0x3B, 0x80, 0x80, 0x01, 0x01}; // contactless, without historical bytes
    bool mute = false;                                              // the card gives no answer to a reset
    std::string applet = "none";
    bool help = false;
};

// @throws WrongUsage
[[nodiscard]] Options parse_options(const std::vector<std::string>& arguments);

// How the program is used, from the table that parse_options() goes by.
[[nodiscard]] std::string usage();

// The applet of the name chosen.
// @throws WrongUsage
[[nodiscard]] std::unique_ptr<Applet> make_applet(const Options& options);

} // namespace simcard
