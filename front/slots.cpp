#include "front/standing.h"
#include "pkcs11/slot_list.h"

#include <algorithm>

namespace zvfront {
namespace {

// No module has this many.
constexpr std::size_t MOST_SLOTS = 256;

} // namespace

CK_RV Standing::list_slots(CK_BBOOL with_card, std::vector<CK_SLOT_ID>& slots) const {
    slots.resize(MOST_SLOTS);
    CK_ULONG count = slots.size();
    const CK_RV result = module_.call<&List::C_GetSlotList>(with_card, slots.data(), &count);
    slots.resize(result == CKR_OK ? std::min<std::size_t>(count, slots.size()) : 0);
    return result;
}

CK_RV Standing::number_slots(State& state) const {
    std::vector<CK_SLOT_ID> listed;
    const CK_RV result = list_slots(CK_FALSE, listed);
    if (result == CKR_OK) state.slots.take(listed);
    return result;
}

// Only when it is asked for their count may a module list other slots than before; that is also when it looks at readers
// and cards.
CK_RV Standing::look_for_slots(State& state) const {
    CK_ULONG count = 0;
    const CK_RV result = module_.call<&List::C_GetSlotList>(CK_BBOOL{CK_FALSE}, nullptr, &count);
    if (result != CKR_OK) return result;
    state.opening->slots_seen = true;
    return count == state.slots.numbers().size() ? CKR_OK : number_slots(state);
}

// Once an opening, as a module that is started anew looks at everything anew. One that cannot any more, because the
// service behind it was started again, gets a new start.
CK_RV Standing::see_slots(State& state) {
    if (state.opening->slots_seen) return CKR_OK;
    const CK_RV result = look_for_slots(state);
    const bool in_use = state.started != Started::here || !state.opening->slots().empty();
    if (result == CKR_OK || in_use) return result;
    end(state);
    const CK_RV again = start(state);
    return again == CKR_OK ? look_for_slots(state) : again;
}

// A number for one of the module's slots, in its place.
CK_RV Standing::give_number(State& state, CK_SLOT_ID& slot) const {
    auto number = state.slots.number(slot);
    if (!number) {
        if (const CK_RV result = number_slots(state); result != CKR_OK) return result;
        number = state.slots.number(slot);
    }
    if (!number) return CKR_GENERAL_ERROR;
    slot = *number;
    return CKR_OK;
}

CK_RV Standing::get_slot_list(State& state, const Call& call) {
    const bool with_card = call.arguments[0] != CK_FALSE;
    const auto list = call.pointer<CK_SLOT_ID>(1);
    if (list == nullptr) state.opening->slots_seen = false;
    if (const CK_RV seen = see_slots(state); seen != CKR_OK) return seen;
    if (!with_card) return pkcs11::give_slots(state.slots.numbers(), list, call.pointer<CK_ULONG>(2));
    std::vector<CK_SLOT_ID> slots;
    if (const CK_RV listed = list_slots(CK_TRUE, slots); listed != CKR_OK) return listed;
    for (CK_SLOT_ID& slot : slots)
        if (const CK_RV result = give_number(state, slot); result != CKR_OK) return result;
    std::sort(slots.begin(), slots.end());
    return pkcs11::give_slots(slots, list, call.pointer<CK_ULONG>(2));
}

} // namespace zvfront
