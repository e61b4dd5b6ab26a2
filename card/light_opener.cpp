#include "card/light_opener.h"

#include "card/session.h"
#include "diag/report.h"
#include "util/numbers.h"
#include "util/text.h"

namespace zv {

namespace {

constexpr char LIGHT_TITLE[] = "INIZIALIZZA_FUN";
constexpr CK_RV UNUSABLE = ~CK_RV{0};

void trace_result(const char* step, CK_RV result) {
    trace(LIGHT_TITLE, step, with_hex("Ret Code = ", static_cast<long>(result)));
}

bool load_for_light(const char* path) {
    hModule = open_module(path);
    trace_result(join("LoadLibrary: ", path), hModule != nullptr ? CKR_OK : UNUSABLE);
    if (hModule == nullptr) return false;
    if (take_function_list()) return true;
    trace_result("GetProcAddress", UNUSABLE);
    return false;
}

CK_RV start_module() {
    const CK_RV result = call<&Functions::C_Initialize>(nullptr);
    trace_result("C_Initialize", result);
    return result == CKR_CRYPTOKI_ALREADY_INITIALIZED ? CKR_OK : result;
}

CK_RV count_slots() {
    CK_ULONG count = 0;
    const CK_RV result = call<&Functions::C_GetSlotList>(CK_BBOOL{CK_FALSE}, nullptr, &count);
    trace_result("C_GetSlotList FALSE", result);
    return result;
}

CK_RV open_and_login(const char* pin) {
    CK_RV result = open_session(slotID);
    trace_result("C_OpenSession", result);
    if (result != CKR_OK) return result;
    result = login(CKU_USER, pin);
    trace_result("C_Login", result);
    return result == CKR_USER_ALREADY_LOGGED_IN ? CKR_OK : result;
}

} // namespace

CK_RV open_slot(int slot_id, const char* pin, const char* module_path) {
    const char* path = or_empty(module_path);
    trace(LIGHT_TITLE, with_hex("SlotNum = ", slot_id));
    slotID = static_cast<CK_SLOT_ID>(static_cast<long>(slot_id));
    // A blank path is what a command block carries when no module is known.
    if (path[0] == ' ' || !load_for_light(path)) return UNUSABLE;
    CK_RV result = start_module();
    if (result == CKR_OK) result = count_slots();
    if (result == CKR_OK) result = open_and_login(or_empty(pin));
    return result;
}

} // namespace zv
