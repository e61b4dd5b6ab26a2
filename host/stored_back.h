#pragma once

#include "host/card_session.h"

#include <string>

namespace zvhost {

// Puts a certificate back onto the card that a failed installation removed from beside its keys.
// @return whether it is there again
[[nodiscard]] bool store_back(OpenedCard& card, const Bytes& der, const std::string& id,
                              const std::string& label);

} // namespace zvhost
