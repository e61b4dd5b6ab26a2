/* A PKCS#11 module that takes no locks, and has no more functions than these. */
#include "pkcs11.h"

static CK_RV initialize(CK_VOID_PTR wishes) {
    return wishes != 0 ? CKR_CANT_LOCK : CKR_OK;
}

static CK_RV finalize(CK_VOID_PTR reserved) {
    (void)reserved;
    return CKR_OK;
}

static CK_FUNCTION_LIST list = {.C_Initialize = initialize, .C_Finalize = finalize};

__attribute__((visibility("default"))) CK_RV C_GetFunctionList(CK_FUNCTION_LIST_PTR_PTR given) {
    *given = &list;
    return CKR_OK;
}
