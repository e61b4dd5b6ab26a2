#include "front/opening.h"

namespace zvfront {

std::optional<CK_SLOT_ID> Opening::slot_of(CK_SESSION_HANDLE session) const {
    const auto found = sessions_.find(session);
    return found == sessions_.end() ? std::nullopt : std::optional(found->second);
}

void Opening::closed(CK_SESSION_HANDLE session) {
    const auto slot = slot_of(session);
    sessions_.erase(session);
    // The last one takes the login along.
    if (slot && !slots().contains(*slot)) logged_in_.erase(*slot);
}

void Opening::closed_all(CK_SLOT_ID slot) {
    std::erase_if(sessions_, [&](const auto& session) { return session.second == slot; });
    logged_in_.erase(slot);
}

void Opening::logged_in(CK_SESSION_HANDLE session) {
    if (const auto slot = slot_of(session)) logged_in_.insert(*slot);
}

void Opening::logged_out(CK_SESSION_HANDLE session) {
    if (const auto slot = slot_of(session)) logged_in_.erase(*slot);
}

bool Opening::is_logged_in(CK_SESSION_HANDLE session) const {
    const auto slot = slot_of(session);
    return slot && logged_in_.contains(*slot);
}

std::set<CK_SLOT_ID> Opening::slots() const {
    std::set<CK_SLOT_ID> open;
    for (const auto& [session, slot] : sessions_)
        open.insert(slot);
    return open;
}

} // namespace zvfront
