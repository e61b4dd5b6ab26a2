#include "front/slot_numbers.h"

#include "zvConstants.h"

#include <algorithm>

namespace zvfront {

void SlotNumbers::take(const std::vector<CK_SLOT_ID>& listed) {
    for (Slot& slot : slots_)
        slot.listed = std::find(listed.begin(), listed.end(), slot.id) != listed.end();
    for (const CK_SLOT_ID id : listed)
        if (find(id) == nullptr) add(id);
}

// A reader's number is given away only when the numbers that the library can use run out.
void SlotNumbers::add(CK_SLOT_ID id) {
    const auto gone =
        std::find_if(slots_.begin(), slots_.end(), [](const Slot& slot) { return !slot.listed; });
    if (slots_.size() <= ZV_LAST_SLOT || gone == slots_.end())
        slots_.push_back({id, true});
    else
        *gone = {id, true};
}

SlotNumbers::Slot* SlotNumbers::find(CK_SLOT_ID id) {
    const auto found =
        std::find_if(slots_.begin(), slots_.end(), [&](const Slot& slot) { return slot.id == id; });
    return found == slots_.end() ? nullptr : &*found;
}

std::optional<CK_SLOT_ID> SlotNumbers::slot(CK_SLOT_ID number) const {
    if (number >= slots_.size() || !slots_[number].listed) return std::nullopt;
    return slots_[number].id;
}

std::optional<CK_SLOT_ID> SlotNumbers::number(CK_SLOT_ID slot) const {
    for (CK_SLOT_ID number = 0; number < slots_.size(); ++number)
        if (slots_[number].id == slot && slots_[number].listed) return number;
    return std::nullopt;
}

std::vector<CK_SLOT_ID> SlotNumbers::numbers() const {
    std::vector<CK_SLOT_ID> all;
    for (CK_SLOT_ID number = 0; number < slots_.size(); ++number)
        if (slots_[number].listed) all.push_back(number);
    return all;
}

} // namespace zvfront
