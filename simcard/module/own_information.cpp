#include "pkcs11/slot_list.h"
#include "simcard/common/text.h"
#include "simcard/module/forward.h"
#include "simcard/module/own_functions.h"
#include "simcard/module/state.h"

#include <vector>

namespace simcard::own {
namespace {

constexpr const char* MANUFACTURER = "zvRenew simulated card";
constexpr CK_FLAGS ALL_USER_PIN_FLAGS = CKF_USER_PIN_COUNT_LOW | CKF_USER_PIN_FINAL_TRY | CKF_USER_PIN_LOCKED;

CK_FLAGS user_pin_flags(const Card& card) {
    CK_FLAGS flags = 0;
    if (card.pin_tries_left < card.pin_tries_max) flags |= CKF_USER_PIN_COUNT_LOW;
    if (card.pin_tries_left == 1) flags |= CKF_USER_PIN_FINAL_TRY;
    if (card.pin_tries_left == 0) flags |= CKF_USER_PIN_LOCKED;
    return flags;
}

std::vector<CK_SLOT_ID> listed_slots(bool with_card_only) {
    std::vector<CK_SLOT_ID> listed;
    for (CK_SLOT_ID slot = 0; slot < state().slots.size(); ++slot) {
        static_cast<void>(state().was_taken_out(slot));
        if (!with_card_only || state().slots[slot].card().inserted) listed.push_back(slot);
    }
    return listed;
}

} // namespace

CK_RV get_info(CK_INFO_PTR info) {
    const CK_RV result = forward<Function::C_GetInfo>(info);
    if (result != CKR_OK) return result;
    pad(info->manufacturerID, MANUFACTURER);
    pad(info->libraryDescription, "Simulated smart cards");
    return CKR_OK;
}

CK_RV get_slot_list(CK_BBOOL token_present, CK_SLOT_ID_PTR list, CK_ULONG_PTR count) {
    if (!state().hsm) return CKR_CRYPTOKI_NOT_INITIALIZED;
    return pkcs11::give_slots(listed_slots(token_present != CK_FALSE), list, count);
}

CK_RV get_slot_info(CK_SLOT_ID slot, CK_SLOT_INFO_PTR info) {
    if (!state().hsm) return CKR_CRYPTOKI_NOT_INITIALIZED;
    if (!info) return CKR_ARGUMENTS_BAD;
    if (slot >= state().slots.size()) return CKR_SLOT_ID_INVALID;
    static_cast<void>(state().was_taken_out(slot));
    const Card& card = state().slots[slot].card();
    *info = CK_SLOT_INFO{};
    pad(info->slotDescription, card.reader);
    pad(info->manufacturerID, MANUFACTURER);
    info->flags = CKF_REMOVABLE_DEVICE | CKF_HW_SLOT | (card.inserted ? CKF_TOKEN_PRESENT : 0);
    info->hardwareVersion = info->firmwareVersion = {1, 0};
    return CKR_OK;
}

CK_RV get_token_info(CK_SLOT_ID slot, CK_TOKEN_INFO_PTR info) {
    const CK_RV result = forward<Function::C_GetTokenInfo>(slot, info);
    if (result != CKR_OK) return result;
    const Card& card = state().slots[slot].card();
    pad(info->manufacturerID, MANUFACTURER);
    pad(info->model, card.profile);
    pad(info->label, card.label);
    pad(info->serialNumber, card.serial);
    if (card.memory_left) info->ulFreePublicMemory = info->ulFreePrivateMemory = *card.memory_left;
    info->flags = (info->flags & ~ALL_USER_PIN_FLAGS) | user_pin_flags(card);
    if (card.keypad) info->flags |= CKF_PROTECTED_AUTHENTICATION_PATH;
    return CKR_OK;
}

} // namespace simcard::own
