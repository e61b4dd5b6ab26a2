#pragma once

#include "pkcs11.h"

#include <cstddef>

// The one module and the one session that the library works with, and the gate to them.
namespace zv {

// Slot indices whose identifiers the full opener keeps.
constexpr std::size_t CACHED_SLOTS = 8;
// Above any number of slots that a machine has; a larger count is a module's error.
constexpr CK_ULONG MOST_SLOTS = 1024;

extern void* hModule;                          // loaded module; null: none
extern CK_FUNCTION_LIST* p;                    // function list that a module gave last
extern CK_SESSION_HANDLE hSession;             // open session; 0: none
extern CK_SLOT_ID slotID;                      // slot of the current session
extern CK_RV rv;                               // result of the last PKCS#11 call
extern CK_SLOT_ID vettoreSlotID[CACHED_SLOTS]; // slot identifier by slot index; 0: not looked up yet

// Loads a module; null when it does not load. An empty path never does: dlopen would open the host program.
[[nodiscard]] void* open_module(const char* path);

// The function list that a loaded module gives; null when it gives none.
[[nodiscard]] CK_FUNCTION_LIST* function_list_of(void* module);

// Fills p from the loaded module. Returns false, and closes the gate, when the module gives no list.
[[nodiscard]] bool take_function_list();

// False when no module is loaded, or when the loaded one gave no list (p is then an older module's).
[[nodiscard]] bool module_answers();

// Calls a function of a list, which may lack it.
template <typename Function, typename... Arguments> CK_RV invoke(Function function, Arguments... arguments) {
    return function != nullptr ? function(arguments...) : CKR_FUNCTION_NOT_SUPPORTED;
}

// The gate: every call to the card goes through it, as zv::call<&zv::Functions::C_Login>(...).
template <auto Entry, typename... Arguments> CK_RV call(Arguments... arguments) {
    if (!module_answers()) return CKR_CRYPTOKI_NOT_INITIALIZED;
    return invoke(p->*Entry, arguments...);
}

using Functions = CK_FUNCTION_LIST;

// Opens a read/write session on a slot into hSession.
[[nodiscard]] CK_RV open_session(CK_SLOT_ID slot_id);

// Logs a user in to hSession.
[[nodiscard]] CK_RV login(CK_USER_TYPE user, const char* pin);

// Closes the session, finalises the module and unloads it: what there is of each.
void close_card();

} // namespace zv
