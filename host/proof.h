#pragma once

#include "host/card_session.h"
#include "host/certificate.h"

#include <string>

namespace zvhost {

// What came of a proof.
struct Proof {
    Sentence reason;              // why there is none, to end a sentence, full stop included; empty: proved
    bool signed_with = true;      // false: the key's modulus was compared with the certificate's instead
    std::optional<Advice> advice; // what to do about it, when that is not to try again
    CardNow now;                  // what the card holds
};

// What a key that wants the PIN before each signature gets. It may have one of its own, and the card's cost a try.
enum class KeyPin { given, kept };

// Proves that a certificate on the card belongs to the private key beside it: signs with the key in a new
// session and verifies with the certificate. A key that does not get the PIN that it wants for that, or refuses it,
// is compared.
[[nodiscard]] Proof prove_pair(OpenedCard& card, const std::string& id, const Bytes& expected_certificate,
                               KeyPin key_pin);

} // namespace zvhost
