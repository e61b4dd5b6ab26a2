#include "simcard/module/forward.h"
#include "simcard/module/own_functions.h"
#include "simcard/module/state.h"

namespace simcard::own {

CK_RV open_session(CK_SLOT_ID slot, CK_FLAGS flags, CK_VOID_PTR application, CK_NOTIFY notify,
                   CK_SESSION_HANDLE_PTR session) {
    const CK_RV result = forward<Function::C_OpenSession>(slot, flags, application, notify, session);
    if (result != CKR_OK) return result;
    const CK_SESSION_HANDLE hidden = *session;
    *session = state().next_session++;
    state().sessions.emplace(*session, Session{hidden, slot, std::nullopt});
    return CKR_OK;
}

CK_RV close_session(CK_SESSION_HANDLE session) {
    const CK_RV result = forward<Function::C_CloseSession>(session);
    if (result == CKR_OK) state().sessions.erase(session);
    return result;
}

CK_RV close_all_sessions(CK_SLOT_ID slot) {
    const CK_RV result = forward<Function::C_CloseAllSessions>(slot);
    if (result == CKR_OK) state().forget_sessions(slot);
    return result;
}

CK_RV get_session_info(CK_SESSION_HANDLE session, CK_SESSION_INFO_PTR info) {
    const CK_RV result = forward<Function::C_GetSessionInfo>(session, info);
    if (result == CKR_OK) info->slotID = state().session(session)->slot;
    return result;
}

} // namespace simcard::own
