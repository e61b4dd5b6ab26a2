#pragma once

#include "simcard/common/softhsm.h"
#include "simcard/module/slots.h"

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace simcard {

// A session of ours and SoftHSM's behind it.
struct Session {
    CK_SESSION_HANDLE hidden;
    CK_SLOT_ID slot;
    // What a started search has still to give, as handles of ours.
    std::optional<std::deque<CK_OBJECT_HANDLE>> search;
};

// An object that the caller has a handle of, and SoftHSM's handle behind it.
struct Object {
    CK_OBJECT_HANDLE hidden;
    std::string fingerprint; // see object_order.h; empty as long as it was not needed
};

// What the module knows between C_Initialize and C_Finalize.
//
// Handles are ours and count up, sessions from 1 and objects from 1001: the same calls get the same handles
// in every process, and one kind is not taken for the other.
struct State {
    // Null while the module is not initialised. Ended by C_Finalize alone: when a process ends without it,
    // what SoftHSM needs for its own end may be gone before this is.
    SoftHsm* hsm = nullptr;
    std::vector<Slot> slots;
    std::map<CK_SESSION_HANDLE, Session> sessions;
    // The user's PIN by slot, of cards alone whose keys want another: SoftHSM knows none but the user's.
    std::map<CK_SLOT_ID, std::string> user_pins;
    std::map<CK_OBJECT_HANDLE, Object> objects;
    std::map<CK_OBJECT_HANDLE, CK_OBJECT_HANDLE> handle_of_hidden;
    CK_SESSION_HANDLE next_session = 1;
    CK_OBJECT_HANDLE next_object = 1001;

    // Our handle of an object of SoftHSM's, a new one the first time.
    [[nodiscard]] CK_OBJECT_HANDLE handle_of(CK_OBJECT_HANDLE hidden);
    void forget_sessions(CK_SLOT_ID slot);

    // Looks whether the card of a slot was taken out since the last time; its sessions then end.
    [[nodiscard]] bool was_taken_out(CK_SLOT_ID slot);

    // The session, or none.
    [[nodiscard]] Session* session(CK_SESSION_HANDLE handle);

    // CKR_OK when a session's card is in its reader. The one call that notices the removal gets
    // CKR_DEVICE_REMOVED; the session is gone from then on.
    [[nodiscard]] CK_RV reach_session(CK_SESSION_HANDLE handle);
    // CKR_OK when a slot is one and has a card that SoftHSM knows.
    [[nodiscard]] CK_RV reach_slot(CK_SLOT_ID slot);
};

// The module's state.
[[nodiscard]] State& state();

// The folder of the card that a session is with.
[[nodiscard]] const std::filesystem::path& folder_of(const Session& session);

} // namespace simcard
