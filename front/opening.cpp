#include "front/opening.h"

namespace zvfront {

void Opening::closed(CK_SESSION_HANDLE session) {
    const auto found = sessions_.find(session);
    if (found == sessions_.end()) return;
    const CK_SLOT_ID slot = found->second;
    sessions_.erase(found);
    // The last one takes the login along.
    if (!slots().contains(slot)) logged_in_.erase(slot);
}

void Opening::closed_all(CK_SLOT_ID slot) {
    std::erase_if(sessions_, [&](const auto& session) { return session.second == slot; });
    logged_in_.erase(slot);
}

void Opening::logged_in(CK_SESSION_HANDLE session) {
    if (const auto found = sessions_.find(session); found != sessions_.end())
        logged_in_.insert(found->second);
}

void Opening::logged_out(CK_SESSION_HANDLE session) {
    if (const auto found = sessions_.find(session); found != sessions_.end()) logged_in_.erase(found->second);
}

bool Opening::is_logged_in(CK_SESSION_HANDLE session) const {
    const auto found = sessions_.find(session);
    return found != sessions_.end() && logged_in_.contains(found->second);
}

std::set<CK_SLOT_ID> Opening::slots() const {
    std::set<CK_SLOT_ID> open;
    for (const auto& [session, slot] : sessions_)
        open.insert(slot);
    return open;
}

} // namespace zvfront
