// __Initialize: the opener that takes a slot identifier as it is and reports raw results.
#include "card/session.h"
#include "diag/log.h"
#include "util/text.h"

namespace {

constexpr char LIGHT_TITLE[] = "INIZIALIZZA_FUN";
constexpr CK_RV UNUSABLE = ~CK_RV{0};

void traceResult(const char* step, CK_RV result) {
    zv::trace(LIGHT_TITLE, step, CatLtoAHex1("Ret Code = ", static_cast<long>(result)));
}

bool loadForLight(const char* path) {
    zv::hModule = zv::openModule(path);
    traceResult(CatSZtoSZ("LoadLibrary: ", path), zv::hModule != nullptr ? CKR_OK : UNUSABLE);
    if (zv::hModule == nullptr) return false;
    if (zv::takeFunctionList()) return true;
    traceResult("GetProcAddress", UNUSABLE);
    return false;
}

CK_RV startModule() {
    const CK_RV result = zv::call<&zv::Functions::C_Initialize>(nullptr);
    traceResult("C_Initialize", result);
    return result == CKR_CRYPTOKI_ALREADY_INITIALIZED ? CKR_OK : result;
}

CK_RV countSlots() {
    CK_ULONG count = 0;
    const CK_RV result = zv::call<&zv::Functions::C_GetSlotList>(CK_BBOOL{CK_FALSE}, nullptr, &count);
    traceResult("C_GetSlotList FALSE", result);
    return result;
}

CK_RV openAndLogin(const char* pin) {
    CK_RV result = zv::openSession(zv::slotID);
    traceResult("C_OpenSession", result);
    if (result != CKR_OK) return result;
    result = zv::login(CKU_USER, pin);
    traceResult("C_Login", result);
    return result == CKR_USER_ALREADY_LOGGED_IN ? CKR_OK : result;
}

} // namespace

CK_RV __Initialize(int slot, char* pin, char* libPath) {
    const char* path = zv::orEmpty(libPath);
    zv::trace(LIGHT_TITLE, CatItoAHex1("SlotNum = ", slot));
    zv::slotID = static_cast<CK_SLOT_ID>(static_cast<long>(slot));
    // A blank path is what a command block carries when no module is known.
    if (path[0] == ' ' || !loadForLight(path)) return UNUSABLE;
    CK_RV result = startModule();
    if (result == CKR_OK) result = countSlots();
    if (result == CKR_OK) result = openAndLogin(zv::orEmpty(pin));
    return result;
}
