// The simulated card behind a front that, as opencryptoki's, a process cannot load a second time.
#include "pkcs11.h"

#include <dlfcn.h>
#include <stdlib.h>

__attribute__((constructor)) static void load(void) {
    if (getenv("ZV_LOADED") != NULL) abort();
    setenv("ZV_LOADED", "once", 1);
}

__attribute__((visibility("default"))) CK_RV C_GetFunctionList(CK_FUNCTION_LIST** list) {
    void* card = dlopen(ZVSIMCARD_MODULE, RTLD_NOW);
    return ((CK_C_GetFunctionList)dlsym(card, "C_GetFunctionList"))(list);
}
