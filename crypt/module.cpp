#include "crypt/module.h"

#include <dlfcn.h>

#include <cstdio>

namespace zvcrypt {
namespace {

// An empty path would open the host program itself.
void* load(const std::string& path) {
    void* handle = path.empty() ? nullptr : ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle != nullptr) return handle;
    const char* detail = path.empty() ? nullptr : ::dlerror();
    throw Failure(ZVC_ERR_MODULE_LOAD, "Impossibile caricare il modulo PKCS#11 \"" + path + "\"" +
                                           (detail == nullptr ? "" : std::string(": ") + detail));
}

CK_FUNCTION_LIST_PTR function_list(void* handle) {
    const auto get_list = reinterpret_cast<CK_C_GetFunctionList>(::dlsym(handle, "C_GetFunctionList"));
    CK_FUNCTION_LIST_PTR list = nullptr;
    return get_list != nullptr && get_list(&list) == CKR_OK ? list : nullptr;
}

Failure coded(zvCryptError code, const char* sentence, const char* function, CK_RV result) {
    return {code, module_reason(sentence, function, result)};
}

} // namespace

std::string module_reason(const char* sentence, const char* function, CK_RV result) {
    char text[192];
    (void)std::snprintf(text, sizeof text, "%s (%s: 0x%lX)", sentence, function, result);
    return text;
}

Module::Module(const std::string& path) : handle_(load(path)), list_(function_list(handle_)) {
    if (list_ != nullptr) return;
    (void)::dlclose(handle_);
    throw Failure(ZVC_ERR_MODULE_LOAD, "\"" + path + "\" non è un modulo PKCS#11");
}

Module::~Module() {
    (void)::dlclose(handle_);
}

Failure module_failure(const char* function, CK_RV result) {
    switch (result) {
    case CKR_TOKEN_NOT_PRESENT:
    case CKR_TOKEN_NOT_RECOGNIZED:
        return coded(ZVC_ERR_CARD_REMOVED, "Nessuna smart card utilizzabile nel lettore", function, result);
    case CKR_DEVICE_REMOVED:
    case CKR_SESSION_HANDLE_INVALID:
    case CKR_SESSION_CLOSED:
    case CKR_CRYPTOKI_NOT_INITIALIZED:
        return coded(ZVC_ERR_CARD_REMOVED, "La smart card è stata estratta o la sessione è stata chiusa",
                     function, result);
    case CKR_USER_NOT_LOGGED_IN:
        return coded(ZVC_ERR_NOT_LOGGED_IN, "La smart card richiede prima il PIN", function, result);
    case CKR_PIN_INCORRECT:
        return coded(ZVC_ERR_PIN_INCORRECT, "PIN errato", function, result);
    case CKR_PIN_INVALID:
    case CKR_PIN_LEN_RANGE:
        return coded(ZVC_ERR_PIN_FORM,
                     "Il PIN ha una lunghezza o dei caratteri che la smart card non ammette", function,
                     result);
    case CKR_PIN_LOCKED:
        return coded(ZVC_ERR_PIN_LOCKED, "PIN bloccato", function, result);
    case CKR_PIN_EXPIRED:
        return coded(ZVC_ERR_PIN_EXPIRED, "PIN scaduto", function, result);
    default:
        return coded(ZVC_ERR_MODULE, "La smart card o il suo modulo PKCS#11 ha dato errore", function,
                     result);
    }
}

} // namespace zvcrypt
