#pragma once

#include "host/card_list.h"

#include <vector>

namespace zvhost {

// What new keys of a kind would be called, and what is in the way.
struct FreeId {
    Kind kind = Kind::signature;
    Proposal proposal;
    bool pending = false; // a pair that waits for its certificate has it
    bool retired = false; // keys that a removal left have it
};

struct FreeIds {
    CardFacts card;
    std::vector<FreeId> kinds;
};

// Says what the library would call new keys. @throws Error
[[nodiscard]] FreeIds find_free_ids(const CardChoice& choice, PinSource& pin);

} // namespace zvhost
