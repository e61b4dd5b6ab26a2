#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace simcard {

// What answers the commands of a card (ISO/IEC 7816-4): the program on its chip.
class Applet {
  public:
    Applet() = default;
    virtual ~Applet() = default;
    Applet(const Applet&) = delete;
    Applet& operator=(const Applet&) = delete;

    // The card got power, or was reset: what a chip forgets then (a verified PIN, the selected file) goes.
    virtual void reset() {}
    // The card lost its power.
    virtual void power_off() { reset(); }
    // The answer to a command: data, then the two status bytes. At most 65535 bytes.
    [[nodiscard]] virtual std::vector<std::uint8_t> answer(std::span<const std::uint8_t> command) = 0;
};

// Knows no command: 6D00 to each.
class EmptyApplet : public Applet {
  public:
    [[nodiscard]] std::vector<std::uint8_t> answer(std::span<const std::uint8_t>) override {
        return {0x6D, 0x00};
    }
};

} // namespace simcard
