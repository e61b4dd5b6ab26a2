#pragma once

#include "host/inventory.h"

#include <string>

namespace zvhost {

// Sorts what a card shows without a login as the library sorts what it reads with the PIN, and from the certificates
// themselves. Of a services card, a public key or a series stands for the private key, which does not show. What
// does not show either, such as the mark of a request for a services card's own certificate, is as if it was not there.
[[nodiscard]] Inventory public_inventory(const CardView& view, const CardFacts& card);

} // namespace zvhost
