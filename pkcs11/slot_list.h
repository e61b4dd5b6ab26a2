#pragma once

#include "pkcs11.h"

#include <vector>

namespace pkcs11 {

// Answers C_GetSlotList with these slots.
[[nodiscard]] CK_RV give_slots(const std::vector<CK_SLOT_ID>& slots, CK_SLOT_ID_PTR list, CK_ULONG_PTR count);

} // namespace pkcs11
