#pragma once

#include "simcard/virtual/applet_command.h"

namespace simcard {

// A secret that the card compares: a PIN, or the PUK that unlocks it (ISO/IEC 7816-4, 7.5).
class CardPin {
  public:
    CardPin() = default;
    ~CardPin();
    CardPin(const CardPin&) = delete;
    CardPin& operator=(const CardPin&) = delete;

    [[nodiscard]] bool is_set() const { return !value_.empty(); }
    [[nodiscard]] bool is_given() const { return given_; }
    // What was given is forgotten.
    void forget() { given_ = false; }

    // Compares. @throws Refused with the tries left, or as blocked.
    void verify(std::span<const std::uint8_t> secret);
    // Says by its status what verify() without a secret asks. @throws Refused unless it was given.
    void ask() const;
    // Sets the secret and gives all tries back. @throws Refused when it is too short or too long.
    void set(std::span<const std::uint8_t> secret);

    static constexpr std::size_t LONGEST = 16;

  private:
    static constexpr int MOST_TRIES = 3;

    [[nodiscard]] std::uint16_t tries_status() const;

    Octets value_;
    int tries_ = MOST_TRIES;
    bool given_ = false;
};

} // namespace simcard
