#include "simcard/module/state.h"

#include <utility>

namespace simcard {

State& state() {
    static State only;
    return only;
}

const std::filesystem::path& folder_of(const Session& session) {
    return state().slots[session.slot].card().folder;
}

CK_OBJECT_HANDLE State::handle_of(CK_OBJECT_HANDLE hidden) {
    const auto [place, is_new] = handle_of_hidden.try_emplace(hidden, next_object);
    if (is_new) objects.emplace(next_object++, Object{hidden, {}});
    return place->second;
}

void State::forget_sessions(CK_SLOT_ID slot) {
    std::erase_if(sessions, [slot](const auto& entry) { return entry.second.slot == slot; });
}

bool State::was_taken_out(CK_SLOT_ID slot) {
    if (!slots[slot].was_taken_out()) return false;
    if (const auto& token = slots[slot].token()) (*hsm)->C_CloseAllSessions(*token);
    forget_sessions(slot);
    return true;
}

Session* State::session(CK_SESSION_HANDLE handle) {
    const auto found = sessions.find(handle);
    return found == sessions.end() ? nullptr : &found->second;
}

CK_RV State::reach_session(CK_SESSION_HANDLE handle) {
    if (!hsm) return CKR_CRYPTOKI_NOT_INITIALIZED;
    const Session* found = session(handle);
    if (!found) return CKR_SESSION_HANDLE_INVALID;
    return was_taken_out(found->slot) ? CKR_DEVICE_REMOVED : CKR_OK;
}

CK_RV State::reach_slot(CK_SLOT_ID slot) {
    if (!hsm) return CKR_CRYPTOKI_NOT_INITIALIZED;
    if (slot >= slots.size()) return CKR_SLOT_ID_INVALID;
    static_cast<void>(was_taken_out(slot));
    if (!slots[slot].card().inserted) return CKR_TOKEN_NOT_PRESENT;
    return slots[slot].token() ? CKR_OK : CKR_TOKEN_NOT_RECOGNIZED;
}

} // namespace simcard
