#include "simcard/common/object_order.h"
#include "simcard/module/forward.h"
#include "simcard/module/own_functions.h"
#include "simcard/module/state.h"

#include <algorithm>
#include <array>

namespace simcard::own {
namespace {

// An object's fingerprint, read from the card the first time.
const std::string& fingerprint_of(const Session& session, Object& object) {
    if (object.fingerprint.empty())
        object.fingerprint = fingerprint(*state().hsm->get(), session.hidden, object.hidden);
    return object.fingerprint;
}

// What a search that SoftHSM has started finds, in SoftHSM's order, which means nothing.
std::vector<CK_OBJECT_HANDLE> drain(const Session& session) {
    std::vector<CK_OBJECT_HANDLE> found;
    std::array<CK_OBJECT_HANDLE, 64> some;
    CK_ULONG count = some.size();
    while (count != 0 &&
           (*state().hsm)->C_FindObjects(session.hidden, some.data(), some.size(), &count) == CKR_OK)
        found.insert(found.end(), some.data(), some.data() + count);
    return found;
}

struct Found {
    std::string fingerprint;
    CK_OBJECT_HANDLE hidden;
};

std::vector<Found> with_fingerprints(const Session& session, const std::vector<CK_OBJECT_HANDLE>& hidden) {
    std::vector<Found> found;
    for (const CK_OBJECT_HANDLE one : hidden) {
        const auto known = state().handle_of_hidden.find(one);
        Object fresh{one, {}};
        Object& object = known == state().handle_of_hidden.end() ? fresh : state().objects.at(known->second);
        found.push_back({fingerprint_of(session, object), one});
    }
    return found;
}

// Handles of ours for what was found, in the order of the card.
std::deque<CK_OBJECT_HANDLE> in_order(const Session& session, const std::vector<CK_OBJECT_HANDLE>& hidden) {
    const ObjectOrder order(folder_of(session));
    auto found = with_fingerprints(session, hidden);
    std::stable_sort(found.begin(), found.end(), [&](const Found& a, const Found& b) {
        return order.before(a.fingerprint, b.fingerprint);
    });
    std::deque<CK_OBJECT_HANDLE> handles;
    for (const Found& one : found) {
        handles.push_back(state().handle_of(one.hidden));
        state().objects.at(handles.back()).fingerprint = one.fingerprint;
    }
    return handles;
}

// Does what changes an object or destroys it, and keeps its place in the order.
template <class Change>
CK_RV keeping_order(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, Change change) {
    const CK_RV reached = state().reach_session(session);
    if (reached != CKR_OK) return reached;
    const auto known = state().objects.find(object);
    if (known == state().objects.end()) return change();
    const Session& found = *state().session(session);
    const std::string before = fingerprint_of(found, known->second);
    const CK_RV result = change();
    if (result != CKR_OK) return result;
    const std::string after = fingerprint(*state().hsm->get(), found.hidden, known->second.hidden);
    known->second.fingerprint = after;
    change_object(folder_of(found), before, after);
    return CKR_OK;
}

} // namespace

CK_RV destroy_object(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object) {
    return keeping_order(session, object,
                         [=] { return forward<Function::C_DestroyObject>(session, object); });
}

CK_RV set_attribute_value(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_PTR attributes,
                          CK_ULONG count) {
    return keeping_order(session, object, [=] {
        return forward<Function::C_SetAttributeValue>(session, object, attributes, count);
    });
}

CK_RV find_objects_init(CK_SESSION_HANDLE session, CK_ATTRIBUTE_PTR attributes, CK_ULONG count) {
    const CK_RV result = forward<Function::C_FindObjectsInit>(session, attributes, count);
    if (result != CKR_OK) return result;
    Session& found = *state().session(session);
    found.search = in_order(found, drain(found));
    return CKR_OK;
}

CK_RV find_objects(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE_PTR objects, CK_ULONG most,
                   CK_ULONG_PTR count) {
    const CK_RV result = forward<Function::C_FindObjects>(session, objects, most, count);
    if (result != CKR_OK) return result;
    auto& rest = *state().session(session)->search;
    *count = std::min<CK_ULONG>(most, rest.size());
    const auto end = rest.begin() + static_cast<std::ptrdiff_t>(*count);
    std::copy(rest.begin(), end, objects);
    rest.erase(rest.begin(), end);
    return CKR_OK;
}

CK_RV find_objects_final(CK_SESSION_HANDLE session) {
    const CK_RV result = forward<Function::C_FindObjectsFinal>(session);
    if (result == CKR_OK) state().session(session)->search.reset();
    return result;
}

} // namespace simcard::own
