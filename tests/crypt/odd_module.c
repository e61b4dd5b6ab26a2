/* A PKCS#11 module with most entries left out and texts padded with NUL; slot 0 opens sessions without a handle. */
#include "pkcs11.h"

#include <string.h>

static CK_RV initialize(CK_VOID_PTR arguments) {
    return arguments == NULL_PTR ? CKR_OK : CKR_ARGUMENTS_BAD;
}

static CK_RV open_session(CK_SLOT_ID slot, CK_FLAGS flags, CK_VOID_PTR application, CK_NOTIFY notify,
                          CK_SESSION_HANDLE_PTR session) {
    (void)flags, (void)application, (void)notify;
    *session = slot;
    return CKR_OK;
}

static CK_RV token_info(CK_SLOT_ID slot, CK_TOKEN_INFO_PTR info) {
    memset(info, 0, sizeof *info);
    memset(info->label, 'L', sizeof info->label);
    memcpy(info->model, " model", 6);
    if (slot != 0) memcpy(info->manufacturerID, "\303\250\\ \350\n\033[2J\342\200\256.\303", 15);
    memcpy(info->serialNumber, "12050001", slot == 0 ? 0 : 8);
    return CKR_OK;
}

static CK_FUNCTION_LIST list = {
    .C_Initialize = initialize, .C_OpenSession = open_session, .C_GetTokenInfo = token_info};

__attribute__((visibility("default"))) CK_RV C_GetFunctionList(CK_FUNCTION_LIST_PTR_PTR result) {
    *result = &list;
    return CKR_OK;
}
