#pragma once

#include "pkcs11.h"

// What the front (libzvfront.so) exports beside C_GetFunctionList.
namespace pkcs11 {

// Has the front stand before the module at that path: from now on C_GetFunctionList gives a list that leads to it, for
// every file name by which the front is loaded. Lists given before keep leading where they led. The module is loaded, and
// not started. 0; otherwise it cannot be used as a module, or there are more of them than the front can stand before, and
// nothing has changed.
using StandBefore = int (*)(const char* module_path);
inline constexpr const char* STAND_BEFORE = "zvfront_stand_before";

// Ends every module that the front has started, as the end of the process does: what is used next starts anew.
using LetGo = void (*)();
inline constexpr const char* LET_GO = "zvfront_let_go";

} // namespace pkcs11
