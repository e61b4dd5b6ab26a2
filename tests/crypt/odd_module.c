/* A PKCS#11 module that answers what a healthy one does not; the slot says what. */
#include "odd_module.h"

#include "pkcs11.h"

#include <string.h>

static CK_SLOT_ID oddity;
static CK_FUNCTION_LIST list;

static CK_RV initialize(void* arguments) {
    (void)arguments;
    return CKR_OK;
}

static CK_RV openSession(CK_SLOT_ID slot, CK_FLAGS flags, void* application, CK_NOTIFY notify,
                         CK_SESSION_HANDLE* session) {
    (void)flags, (void)application, (void)notify;
    oddity = slot;
    if (slot == ODD_NO_TOKEN) return CKR_TOKEN_NOT_PRESENT;
    if (slot == ODD_NO_LOGIN_ENTRY) list.C_Login = NULL_PTR;
    *session = slot == ODD_NULL_SESSION ? CK_INVALID_HANDLE : 7;
    return CKR_OK;
}

static CK_RV closeSession(CK_SESSION_HANDLE session) {
    (void)session;
    if (oddity == ODD_CLOSE_FAILS) return CKR_GENERAL_ERROR;
    return oddity == ODD_CARD_GONE ? CKR_DEVICE_REMOVED : CKR_OK;
}

static CK_RV login(CK_SESSION_HANDLE session, CK_USER_TYPE user, CK_UTF8CHAR* pin, CK_ULONG length) {
    (void)session, (void)user, (void)pin, (void)length;
    if (oddity == ODD_PIN_LOCKED) return CKR_PIN_LOCKED;
    if (oddity == ODD_PIN_EXPIRED) return CKR_PIN_EXPIRED;
    return oddity == ODD_FINAL_TRY || oddity == ODD_NOW_LOCKED ? CKR_PIN_INCORRECT : CKR_OK;
}

static CK_RV tokenInfo(CK_SLOT_ID slot, CK_TOKEN_INFO* info) {
    memset(info, 0, sizeof *info);
    memset(info->label, 'L', sizeof info->label);
    memcpy(info->model, " model", 6);
    memcpy(info->serialNumber, "12050001\0\0\0\0\0\0\0", 16);
    if (slot == ODD_FULL_SERIAL) memset(info->serialNumber, '9', sizeof info->serialNumber);
    if (slot == ODD_FINAL_TRY) info->flags = CKF_USER_PIN_FINAL_TRY;
    if (slot == ODD_NOW_LOCKED) info->flags = CKF_USER_PIN_LOCKED | CKF_USER_PIN_FINAL_TRY;
    return CKR_OK;
}

static int found;

static CK_RV findInit(CK_SESSION_HANDLE session, CK_ATTRIBUTE* attributes, CK_ULONG count) {
    (void)session, (void)attributes, (void)count;
    found = 0;
    return CKR_OK;
}

static CK_RV find(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE* objects, CK_ULONG most, CK_ULONG* count) {
    (void)session;
    *count = oddity == ODD_HUGE_COUNT ? most + 1000000 : oddity == ODD_ENDLESS_SEARCH ? 1 : found++ == 0;
    objects[0] = 1;
    return CKR_OK;
}

static CK_RV findFinal(CK_SESSION_HANDLE session) {
    (void)session;
    return CKR_OK;
}

static CK_RV attributes(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE* all,
                        CK_ULONG count) {
    (void)session, (void)object;
    for (CK_ULONG i = 0; i < count; ++i)
        all[i].ulValueLen = i == 0 ? CK_UNAVAILABLE_INFORMATION : all[i].ulValueLen + 1;
    return CKR_OK;
}

__attribute__((visibility("default"))) CK_RV C_GetFunctionList(CK_FUNCTION_LIST_PTR_PTR result) {
    memset(&list, 0, sizeof list);
    list.C_Initialize = initialize;
    list.C_Finalize = initialize;
    list.C_OpenSession = openSession;
    list.C_CloseSession = closeSession;
    list.C_Login = login;
    list.C_GetTokenInfo = tokenInfo;
    list.C_FindObjectsInit = findInit;
    list.C_FindObjects = find;
    list.C_FindObjectsFinal = findFinal;
    list.C_GetAttributeValue = attributes;
    *result = &list;
    return CKR_OK;
}
