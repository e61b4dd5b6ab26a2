#include "pkcs11/module.h"

#include <dlfcn.h>

namespace pkcs11 {
namespace {

void* loaded(const std::string& path, Mapped mapped) {
    const int keep = mapped == Mapped::until_exit ? RTLD_NODELETE : 0;
    // An empty path would open the host program itself.
    void* handle = path.empty() ? nullptr : ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | keep);
    if (handle != nullptr) return handle;
    const char* reason = ::dlerror();
    throw NotLoaded(reason == nullptr ? "" : reason);
}

CK_FUNCTION_LIST* list_in(void* handle) {
    const auto get_list = reinterpret_cast<CK_C_GetFunctionList>(::dlsym(handle, "C_GetFunctionList"));
    CK_FUNCTION_LIST* list = nullptr;
    return get_list != nullptr && get_list(&list) == CKR_OK ? list : nullptr;
}

} // namespace

Module::Module(const std::string& path, Mapped mapped)
    : handle_(loaded(path, mapped)), list_(list_in(handle_)) {
    if (list_ != nullptr) return;
    (void)::dlclose(handle_);
    throw NotAModule(path + " is no PKCS#11 module");
}

Module::~Module() {
    (void)::dlclose(handle_);
}

void* Module::symbol(const char* name) const {
    return ::dlsym(handle_, name);
}

} // namespace pkcs11
