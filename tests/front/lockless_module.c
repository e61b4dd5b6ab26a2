/* A PKCS#11 module that takes no locks, and has no more functions than these. Its one object is there already, and has the
   handle that every new one gets. C_GetInfo tells in its flags how often it was started. */
#include "pkcs11.h"

static CK_FLAGS starts;

static CK_RV initialize(CK_VOID_PTR wishes) {
    if (wishes != 0) return CKR_CANT_LOCK;
    ++starts;
    return CKR_OK;
}

static CK_RV finalize(CK_VOID_PTR reserved) {
    (void)reserved;
    return CKR_OK;
}

static CK_RV get_info(CK_INFO_PTR info) {
    info->flags = starts;
    return CKR_OK;
}

static CK_RV slot_list(CK_BBOOL present, CK_SLOT_ID_PTR slots, CK_ULONG_PTR count) {
    (void)present;
    if (slots != 0) slots[0] = 700;
    *count = 1;
    return CKR_OK;
}

static CK_RV open_session(CK_SLOT_ID slot, CK_FLAGS flags, CK_VOID_PTR application, CK_NOTIFY notify,
                          CK_SESSION_HANDLE_PTR session) {
    (void)flags, (void)application, (void)notify;
    *session = 5;
    return slot == 700 ? CKR_OK : CKR_SLOT_ID_INVALID;
}

static CK_RV find(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE_PTR objects, CK_ULONG most,
                  CK_ULONG_PTR count) {
    (void)session, (void)most;
    objects[0] = 6;
    *count = 1;
    return CKR_OK;
}

static CK_RV create(CK_SESSION_HANDLE session, CK_ATTRIBUTE_PTR attributes, CK_ULONG count,
                    CK_OBJECT_HANDLE_PTR object) {
    (void)session, (void)attributes, (void)count;
    *object = 6;
    return CKR_OK;
}

static CK_FUNCTION_LIST list = {.C_Initialize = initialize,
                                .C_Finalize = finalize,
                                .C_GetInfo = get_info,
                                .C_GetSlotList = slot_list,
                                .C_OpenSession = open_session,
                                .C_FindObjects = find,
                                .C_CreateObject = create};

__attribute__((visibility("default"))) CK_RV C_GetFunctionList(CK_FUNCTION_LIST_PTR_PTR given) {
    *given = &list;
    return CKR_OK;
}
