#include "pkcs11/slot_list.h"

#include <algorithm>
#include <utility>

namespace pkcs11 {

CK_RV give_slots(const std::vector<CK_SLOT_ID>& slots, CK_SLOT_ID_PTR list, CK_ULONG_PTR count) {
    if (!count) return CKR_ARGUMENTS_BAD;
    const CK_ULONG room = std::exchange(*count, slots.size());
    if (!list) return CKR_OK;
    if (room < slots.size()) return CKR_BUFFER_TOO_SMALL;
    std::copy(slots.begin(), slots.end(), list);
    return CKR_OK;
}

} // namespace pkcs11
