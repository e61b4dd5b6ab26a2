#pragma once

#include "pkcs11.h"

#include <map>
#include <optional>
#include <set>

namespace zvfront {

// What a caller does from C_Initialize to C_Finalize, in the module's slots and sessions.
class Opening {
  public:
    void opened(CK_SESSION_HANDLE session, CK_SLOT_ID slot) { sessions_[session] = slot; }
    void closed(CK_SESSION_HANDLE session);
    void closed_all(CK_SLOT_ID slot);
    void logged_in(CK_SESSION_HANDLE session);
    void logged_out(CK_SESSION_HANDLE session);

    // The slot of a session; none of one that is not known.
    [[nodiscard]] std::optional<CK_SLOT_ID> slot_of(CK_SESSION_HANDLE session) const;
    // Whether somebody is logged in to the card of a session, as far as this caller's logins go.
    [[nodiscard]] bool is_logged_in(CK_SESSION_HANDLE session) const;
    // Slots in which a session is left.
    [[nodiscard]] std::set<CK_SLOT_ID> slots() const;

    // Whether the module was asked for its slots since the beginning.
    bool slots_seen = false;

  private:
    std::map<CK_SESSION_HANDLE, CK_SLOT_ID> sessions_;
    std::set<CK_SLOT_ID> logged_in_;
};

} // namespace zvfront
