#pragma once

#include "pkcs11.h"

#include <functional>
#include <string>
#include <vector>

namespace zvhost {

// A slot that holds a card, and what it says it is.
struct NamedSlot {
    CK_SLOT_ID id = 0;
    std::string description;
};

using SerialOf = std::function<std::string(CK_SLOT_ID)>;

// Chooses the slot of a reader: the first whose description is part of the reader's name, which is also how the
// library will choose.
//
// @param serial_of  the serial number of the card in a slot; asked only where it matters
// @throws Error when there is none, or when the library would take the card of another reader.
[[nodiscard]] CK_SLOT_ID choose_slot(const std::vector<NamedSlot>& slots, const std::string& reader,
                                     const SerialOf& serial_of);

} // namespace zvhost
