#include "card/session.h"

#include "diag/report.h"
#include "util/numbers.h"

#include <dlfcn.h>

#include <cstring>

namespace zv {

void* hModule = nullptr;
CK_FUNCTION_LIST* p = nullptr;
CK_SESSION_HANDLE hSession = 0;
CK_SLOT_ID slotID = 0;
CK_RV rv = CKR_OK;
CK_SLOT_ID vettoreSlotID[CACHED_SLOTS] = {};

namespace {

// Set while the loaded module has given no list of its own.
bool list_missing = false;

} // namespace

void* open_module(const char* path) {
    // What is left of an earlier failure would be taken for this one's reason.
    ::dlerror();
    return path[0] != '\0' ? ::dlopen(path, RTLD_NOW) : nullptr;
}

CK_FUNCTION_LIST* function_list_of(void* module) {
    const auto give = reinterpret_cast<CK_C_GetFunctionList>(::dlsym(module, "C_GetFunctionList"));
    CK_FUNCTION_LIST* list = nullptr;
    if (invoke(give, &list) != CKR_OK) return nullptr;
    return list;
}

bool take_function_list() {
    CK_FUNCTION_LIST* list = function_list_of(hModule);
    list_missing = list == nullptr;
    if (list != nullptr) p = list;
    return list != nullptr;
}

bool module_answers() {
    return hModule != nullptr && p != nullptr && !list_missing;
}

CK_RV open_session(CK_SLOT_ID slot_id) {
    CK_SESSION_HANDLE opened = 0;
    const CK_RV result = call<&Functions::C_OpenSession>(
        slot_id, CK_FLAGS{CKF_SERIAL_SESSION | CKF_RW_SESSION}, nullptr, nullptr, &opened);
    if (result != CKR_OK) return result;
    // 0 stands for no session everywhere here.
    if (opened == 0) return CKR_SESSION_HANDLE_INVALID;
    hSession = opened;
    return CKR_OK;
}

CK_RV login(CK_USER_TYPE user, const char* pin) {
    // The standard's parameter is not const, though a module only reads it.
    auto* bytes = reinterpret_cast<CK_UTF8CHAR*>(const_cast<char*>(pin));
    return call<&Functions::C_Login>(hSession, user, bytes, CK_ULONG{std::strlen(pin)});
}

void close_card() {
    static constexpr char title[] = " .... Finalizza FUN                  .... ";
    const auto trace_state = [](const char* step) {
        const auto session = with_hex("hSession = ", static_cast<long>(hSession));
        trace(step, session, with_hex("hModule = ", reinterpret_cast<long>(hModule)));
    };
    trace_state(title);
    if (hSession != 0) {
        call<&Functions::C_Logout>(hSession);
        call<&Functions::C_CloseSession>(hSession);
        hSession = 0;
    }
    if (hModule != nullptr) {
        call<&Functions::C_Finalize>(nullptr);
        ::dlclose(hModule);
        hModule = nullptr;
        list_missing = false;
    }
    trace_state("Funzione finalizza(): fine");
}

} // namespace zv
