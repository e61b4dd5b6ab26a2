/* A PKCS#11 module with one misbehaviour that no real module has: the ODD_ definition says which. */
#include "pkcs11.h"

#include <string.h>

#define EXPORTED __attribute__((visibility("default")))

static CK_RV initialize(CK_VOID_PTR args) {
    (void)args;
    return CKR_OK;
}

static CK_RV finalize(CK_VOID_PTR reserved) {
    (void)reserved;
    return CKR_OK;
}

/* One slot whose description fills its field and runs into the next; more slots the second time. */
static CK_RV slot_list(CK_BBOOL present, CK_SLOT_ID_PTR list, CK_ULONG_PTR count) {
    (void)present;
    if (list != 0) list[0] = 7;
    *count = list == 0 ? 1 : 100;
    return CKR_OK;
}

static CK_RV slot_info(CK_SLOT_ID slot, CK_SLOT_INFO_PTR info) {
    (void)slot;
    memset(info, 'D', sizeof *info);
    info->flags = CKF_TOKEN_PRESENT;
    return CKR_OK;
}

static CK_RV open_session(CK_SLOT_ID slot, CK_FLAGS flags, CK_VOID_PTR application, CK_NOTIFY notify,
                          CK_SESSION_HANDLE_PTR session) {
    (void)slot, (void)flags, (void)application, (void)notify;
    *session = 5;
    return CKR_OK;
}

static CK_FUNCTION_LIST list = {
#if defined(ODD_ABSURD)
    .C_Initialize = initialize,
    .C_Finalize = finalize,
    .C_GetSlotList = slot_list,
    .C_GetSlotInfo = slot_info,
    .C_OpenSession = open_session,
#endif
    .version = {2, 20},
};

#if !defined(ODD_NO_LIST_FUNCTION)
EXPORTED CK_RV C_GetFunctionList(CK_FUNCTION_LIST_PTR_PTR given) {
#if defined(ODD_NULL_LIST)
    *given = 0;
    return CKR_OK;
#elif defined(ODD_FAILED_LIST)
    *given = &list;
    return CKR_GENERAL_ERROR;
#else
    *given = &list;
    return CKR_OK;
#endif
}
#endif

/* Not every variant uses every function. */
EXPORTED const void* odd_module_parts[] = {(const void*)initialize,   (const void*)finalize,
                                           (const void*)slot_list,    (const void*)slot_info,
                                           (const void*)open_session, &list};
