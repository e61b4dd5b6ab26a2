#pragma once

#include "simcard/authority/keys.h"
#include "simcard/virtual/applet_command.h"

#include <array>

namespace simcard {

// The private keys of a card, RSA of 2048 bits, by their numbers.
class CardKeys {
  public:
    // MANAGE SECURITY ENVIRONMENT: which key, and what it is to do.
    void choose(const Command& command);
    // Forgets the choice.
    void reset() { algorithm_ = key_ = 0; }
    // GENERATE ASYMMETRIC KEY PAIR under the number chosen; gives the public key.
    [[nodiscard]] Octets generate();
    // PERFORM SECURITY OPERATION: signs a DigestInfo, or deciphers (PKCS #1, version 1.5).
    [[nodiscard]] Octets perform(const Command& command) const;

  private:
    std::array<ossl::Key, 16> keys_;
    std::uint8_t algorithm_ = 0;
    std::uint8_t key_ = 0;
};

} // namespace simcard
