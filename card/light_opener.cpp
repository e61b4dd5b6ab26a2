// __Initialize: the opener that takes a slot identifier as it is and reports raw results.
#include "card/session.h"
#include "diag/report.h"
#include "routines/card.h"
#include "util/numbers.h"
#include "util/text.h"

namespace {

constexpr char LIGHT_TITLE[] = "INIZIALIZZA_FUN";
constexpr CK_RV UNUSABLE = ~CK_RV{0};

void trace_result(const char* step, CK_RV result) {
    zv::trace(LIGHT_TITLE, step, zv::with_hex("Ret Code = ", static_cast<long>(result)));
}

bool load_for_light(const char* path) {
    zv::hModule = zv::open_module(path);
    trace_result(zv::join("LoadLibrary: ", path), zv::hModule != nullptr ? CKR_OK : UNUSABLE);
    if (zv::hModule == nullptr) return false;
    if (zv::take_function_list()) return true;
    trace_result("GetProcAddress", UNUSABLE);
    return false;
}

CK_RV start_module() {
    const CK_RV result = zv::call<&zv::Functions::C_Initialize>(nullptr);
    trace_result("C_Initialize", result);
    return result == CKR_CRYPTOKI_ALREADY_INITIALIZED ? CKR_OK : result;
}

CK_RV count_slots() {
    CK_ULONG count = 0;
    const CK_RV result = zv::call<&zv::Functions::C_GetSlotList>(CK_BBOOL{CK_FALSE}, nullptr, &count);
    trace_result("C_GetSlotList FALSE", result);
    return result;
}

CK_RV open_and_login(const char* pin) {
    CK_RV result = zv::open_session(zv::slotID);
    trace_result("C_OpenSession", result);
    if (result != CKR_OK) return result;
    result = zv::login(CKU_USER, pin);
    trace_result("C_Login", result);
    return result == CKR_USER_ALREADY_LOGGED_IN ? CKR_OK : result;
}

} // namespace

CK_RV __Initialize(int slot, char* pin, char* lib_path) {
    const char* path = zv::or_empty(lib_path);
    zv::trace(LIGHT_TITLE, zv::with_hex("SlotNum = ", slot));
    zv::slotID = static_cast<CK_SLOT_ID>(static_cast<long>(slot));
    // A blank path is what a command block carries when no module is known.
    if (path[0] == ' ' || !load_for_light(path)) return UNUSABLE;
    CK_RV result = start_module();
    if (result == CKR_OK) result = count_slots();
    if (result == CKR_OK) result = open_and_login(zv::or_empty(pin));
    return result;
}
