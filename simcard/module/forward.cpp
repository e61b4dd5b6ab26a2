#include "simcard/module/forward.h"

#include "simcard/common/object_order.h"
#include "simcard/module/space.h"
#include "simcard/module/state.h"

#include <chrono>
#include <thread>

namespace simcard {
namespace {

struct Target {
    Slot* slot = nullptr;
    CK_SESSION_HANDLE session = 0; // SoftHSM's
};

CK_RV exchange_slot(CK_ULONG& argument, Target& target) {
    const CK_RV result = state().reach_slot(argument);
    if (result != CKR_OK) return result;
    target.slot = &state().slots[argument];
    argument = *target.slot->token();
    return CKR_OK;
}

CK_RV exchange_session(CK_ULONG& argument, Target& target) {
    const CK_RV result = state().reach_session(argument);
    if (result != CKR_OK) return result;
    const Session& session = *state().session(argument);
    target.slot = &state().slots[session.slot];
    argument = target.session = session.hidden;
    return CKR_OK;
}

// A handle that is none of ours becomes one that SoftHSM does not know.
void exchange_object(CK_ULONG& argument) {
    const auto found = state().objects.find(argument);
    argument = found == state().objects.end() ? CK_INVALID_HANDLE : found->second.hidden;
}

CK_RV exchange(Call& call, Target& target) {
    const auto& parameters = call.parameters();
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        CK_RV result = CKR_OK;
        if (parameters[i].role == Role::slot) result = exchange_slot(call.arguments[i], target);
        if (parameters[i].role == Role::session) result = exchange_session(call.arguments[i], target);
        if (parameters[i].role == Role::object) exchange_object(call.arguments[i]);
        if (result != CKR_OK) return result;
    }
    return CKR_OK;
}

bool is_token_object(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object) {
    CK_BBOOL token = CK_FALSE;
    CK_ATTRIBUTE entry{CKA_TOKEN, &token, sizeof token};
    return (*state().hsm)->C_GetAttributeValue(session, object, &entry, 1) == CKR_OK && token;
}

bool logged_in(CK_SESSION_HANDLE session) {
    CK_SESSION_INFO info{};
    if ((*state().hsm)->C_GetSessionInfo(session, &info) != CKR_OK) return false;
    return info.state != CKS_RO_PUBLIC_SESSION && info.state != CKS_RW_PUBLIC_SESSION;
}

// Whether a call is to change what the card holds. SoftHSM lets everybody change public objects, cards do not.
bool changes_card(const Call& call, const Target& target, const Space& space) {
    if (call.function == Function::C_DestroyObject || call.function == Function::C_SetAttributeValue)
        return is_token_object(target.session, call.arguments[1]);
    return space.objects() > 0;
}

// Gives the objects that a call made handles of ours, and a place in the card's order.
void take_in_objects(const Call& call, const Target& target) {
    const auto& parameters = call.parameters();
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        auto* handle = call.pointer<CK_OBJECT_HANDLE>(i);
        if (parameters[i].role != Role::new_objects || !handle) continue;
        const CK_OBJECT_HANDLE hidden = *handle;
        *handle = state().handle_of(hidden);
        if (!is_token_object(target.session, hidden)) continue;
        std::string& text = state().objects.at(*handle).fingerprint;
        text = fingerprint(*state().hsm->get(), target.session, hidden);
        add_object(target.slot->card().folder, text);
    }
}

} // namespace

std::optional<bool> flag_in(const CK_ATTRIBUTE* attributes, CK_ULONG count, CK_ATTRIBUTE_TYPE type) {
    if (!attributes) return std::nullopt;
    for (const CK_ATTRIBUTE* entry = attributes; entry != attributes + count; ++entry)
        if (entry->type == type && entry->pValue && entry->ulValueLen == sizeof(CK_BBOOL))
            return *static_cast<const CK_BBOOL*>(entry->pValue) != CK_FALSE;
    return std::nullopt;
}

CK_RV forward(Call call) {
    if (!state().hsm) return CKR_CRYPTOKI_NOT_INITIALIZED;
    Target target;
    const CK_RV reached = exchange(call, target);
    if (reached != CKR_OK) return reached;
    if (!target.slot) return call.invoke(*state().hsm->get(), call.arguments);
    const Space space(target.slot->card(), call, target.session);
    if (changes_card(call, target, space) && !logged_in(target.session)) return CKR_USER_NOT_LOGGED_IN;
    if (!space.is_there()) return CKR_DEVICE_MEMORY;
    std::this_thread::sleep_for(std::chrono::microseconds(target.slot->card().latency_us));
    const CK_RV result = call.invoke(*state().hsm->get(), call.arguments);
    if (result != CKR_OK) return result;
    if (pkcs11::makes_objects(call.function)) take_in_objects(call, target);
    space.settle();
    return CKR_OK;
}

} // namespace simcard
