#include "simcard/common/card_folder.h"
#include "simcard/common/object_order.h"
#include "simcard/common/text.h"
#include "simcard/module/forward.h"
#include "simcard/module/own_functions.h"
#include "simcard/module/state.h"

#include <algorithm>
#include <functional>

// A card's PIN has a number of tries, which all processes share. The wrong PIN that takes the last one is
// still answered CKR_PIN_INCORRECT; from then on the answer is CKR_PIN_LOCKED, to the right PIN too.
namespace simcard::own {
namespace {

bool officer_is_logged_in(const Session& session) {
    CK_SESSION_INFO info{};
    return (*state().hsm)->C_GetSessionInfo(session.hidden, &info) == CKR_OK &&
           info.state == CKS_RW_SO_FUNCTIONS;
}

void restore_tries(const std::filesystem::path& folder) {
    update_card(folder, [](Card& card) { card.pin_tries_left = card.pin_tries_max; });
}

// Lets the user's PIN be compared, and counts. No other process compares meanwhile.
CK_RV counted(const std::filesystem::path& folder, const std::function<CK_RV()>& compare) {
    const CardLock lock(folder);
    Card card = load_card(folder);
    if (card.pin_tries_left == 0) return CKR_PIN_LOCKED;
    const CK_RV result = compare();
    const auto before = card.pin_tries_left;
    if (result == CKR_OK) card.pin_tries_left = card.pin_tries_max;
    if (result == CKR_PIN_INCORRECT) --card.pin_tries_left;
    if (card.pin_tries_left != before) save_card(card);
    return result;
}

// The PIN that a key wants before a signature, where it has one of its own. SoftHSM then gets the user's, or for a
// wrong one a wrong one.
CK_RV compare_signature_pin(CK_SESSION_HANDLE session, std::string_view pin, const std::string& wanted) {
    std::string text = state().user_pins[state().session(session)->slot];
    if (pin != wanted) text += '?';
    return forward<Function::C_Login>(session, CK_USER_TYPE{CKU_CONTEXT_SPECIFIC},
                                      reinterpret_cast<CK_UTF8CHAR_PTR>(text.data()), CK_ULONG{text.size()});
}

} // namespace

CK_RV login(CK_SESSION_HANDLE session, CK_USER_TYPE user, CK_UTF8CHAR_PTR pin, CK_ULONG length) {
    const auto compare = [=] { return forward<Function::C_Login>(session, user, pin, length); };
    const CK_RV reached = state().reach_session(session);
    if (reached != CKR_OK) return reached;
    if (user == CKU_SO) return compare();
    const Session& found = *state().session(session);
    const std::string wanted = load_card(folder_of(found)).signature_pin;
    if (wanted.empty() || !pin) return counted(folder_of(found), compare);
    const std::string given(reinterpret_cast<const char*>(pin), length);
    if (user == CKU_CONTEXT_SPECIFIC)
        return counted(folder_of(found), [&] { return compare_signature_pin(session, given, wanted); });
    const CK_RV result = counted(folder_of(found), compare);
    if (result == CKR_OK) state().user_pins[found.slot] = given;
    return result;
}

CK_RV set_pin(CK_SESSION_HANDLE session, CK_UTF8CHAR_PTR old_pin, CK_ULONG old_length,
              CK_UTF8CHAR_PTR new_pin, CK_ULONG new_length) {
    const auto compare = [=] {
        return forward<Function::C_SetPIN>(session, old_pin, old_length, new_pin, new_length);
    };
    const CK_RV reached = state().reach_session(session);
    if (reached != CKR_OK) return reached;
    const Session& found = *state().session(session);
    return officer_is_logged_in(found) ? compare() : counted(folder_of(found), compare);
}

CK_RV init_pin(CK_SESSION_HANDLE session, CK_UTF8CHAR_PTR pin, CK_ULONG length) {
    const CK_RV result = forward<Function::C_InitPIN>(session, pin, length);
    if (result == CKR_OK) restore_tries(folder_of(*state().session(session)));
    return result;
}

CK_RV init_token(CK_SLOT_ID slot, CK_UTF8CHAR_PTR pin, CK_ULONG length, CK_UTF8CHAR_PTR label) {
    const CK_RV result = forward<Function::C_InitToken>(slot, pin, length, label);
    if (result != CKR_OK) return result;
    const auto& folder = state().slots[slot].card().folder;
    forget_objects(folder);
    CK_UTF8CHAR padded[32];
    std::copy_n(label, sizeof padded, padded);
    update_card(folder, [&](Card& card) {
        card.pin_tries_left = card.pin_tries_max;
        card.label = unpadded(padded);
    });
    return CKR_OK;
}

} // namespace simcard::own
