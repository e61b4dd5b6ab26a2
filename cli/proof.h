#pragma once

#include "cli/card_view.h"
#include "cli/key_material.h"

#include <string>

namespace cli {

/**
 * Proves that a certificate on the card belongs to the private key beside it: signs with the key in a new
 * session and verifies with the certificate.
 *
 * @return the reason why it could not be proved, to end a sentence, full stop included; empty when it was
 */
[[nodiscard]] std::string prove_pair(OpenedCard& card, const std::string& id,
                                     const Bytes& expected_certificate);

} // namespace cli
