#include "front/standing.h"

#include "front/needless_write.h"

#include <unistd.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace zvfront {

Standing::Standing(std::string module_path, std::chrono::milliseconds longest_pause)
    : path_(std::move(module_path)), longest_pause_(longest_pause),
      module_(path_, pkcs11::Mapped::until_exit), state_(new State(::getpid())) {}

Standing::~Standing() {
    delete state_.load();
}

// What is open in a process is not open in its child: there it begins anew. What the parent's threads held, and had half
// written, stays behind.
State& Standing::state() {
    State* now = state_.load();
    const pid_t process = ::getpid();
    if (now->process == process) return *now;
    auto own = std::make_unique<State>(process, now);
    return state_.compare_exchange_strong(now, own.get()) ? *own.release() : *now;
}

CK_RV Standing::answer(const Call& call) {
    State& here = state();
    // It may take as long as it likes, and nobody else is to wait with it.
    if (call.function == Function::C_WaitForSlotEvent) return wait_for_slot_event(here, call);
    const Entered inside(here);
    return perform(here, call);
}

CK_RV Standing::perform(State& state, const Call& call) {
    if (call.function == Function::C_Initialize)
        return initialize(state, call.pointer<CK_C_INITIALIZE_ARGS>(0));
    if (!state.opening) return CKR_CRYPTOKI_NOT_INITIALIZED;
    switch (call.function) {
    case Function::C_Finalize:
        return finalize(state, call.pointer<void>(0));
    case Function::C_GetSlotList:
        return get_slot_list(state, call);
    case Function::C_Login:
        return login(state, call);
    case Function::C_SetAttributeValue:
        return set_attributes(state, call);
    default:
        return forward(state, call);
    }
}

CK_RV Standing::forward(State& state, Call call) {
    if (!call.is_in(*module_.list())) return CKR_FUNCTION_NOT_SUPPORTED;
    const auto& parameters = call.parameters();
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (parameters[i].role != pkcs11::Role::slot) continue;
        if (const CK_RV seen = see_slots(state); seen != CKR_OK) return seen;
        const auto slot = state.slots.slot(call.arguments[i]);
        if (!slot) return CKR_SLOT_ID_INVALID;
        call.arguments[i] = *slot;
    }
    const CK_RV result = call.invoke(*module_.list(), call.arguments);
    return result == CKR_OK ? note(state, call) : result;
}

void Standing::note_objects(State& state, const Call& call) {
    const auto slot = state.opening->slot_of(call.arguments[0]);
    if (!slot) return;
    if (call.function == Function::C_DestroyObject) state.objects.destroyed(*slot, call.arguments[1]);
    if (call.function == Function::C_FindObjects)
        for (CK_ULONG i = 0; i < std::min(call.arguments[2], *call.pointer<CK_ULONG>(3)); ++i)
            state.objects.found(*slot, call.pointer<CK_OBJECT_HANDLE>(1)[i]);
    if (!pkcs11::makes_objects(call.function)) return;
    const auto& parameters = call.parameters();
    for (std::size_t i = 0; i < parameters.size(); ++i)
        if (const auto* handle = call.pointer<CK_OBJECT_HANDLE>(i);
            parameters[i].role == pkcs11::Role::new_objects && handle != nullptr)
            state.objects.made(*slot, *handle);
}

// Takes account of a call that succeeded, whose slots are the module's, and gives the caller its numbers.
CK_RV Standing::note(State& state, const Call& call) const {
    Opening& opening = *state.opening;
    const CK_ULONG first = call.arguments[0];
    switch (call.function) {
    case Function::C_OpenSession:
        opening.opened(*call.pointer<CK_SESSION_HANDLE>(4), first);
        break;
    case Function::C_CloseSession:
        opening.closed(first);
        break;
    case Function::C_CloseAllSessions:
        opening.closed_all(first);
        break;
    case Function::C_Login:
        opening.logged_in(first);
        break;
    case Function::C_Logout:
        opening.logged_out(first);
        break;
    case Function::C_GetSessionInfo:
        return give_number(state, call.pointer<CK_SESSION_INFO>(1)->slotID);
    default:
        note_objects(state, call);
        break;
    }
    return CKR_OK;
}

// An open card takes any PIN for the right one. When nobody here has logged in, somebody else has who uses the module in
// this process, or it left the card open: the PIN would not reach the card.
CK_RV Standing::login(State& state, const Call& call) {
    const CK_RV result = forward(state, call);
    const bool of_key = call.arguments[1] == CKU_CONTEXT_SPECIFIC;
    const CK_SESSION_HANDLE session = call.arguments[0];
    if (result != CKR_USER_ALREADY_LOGGED_IN || of_key || state.opening->is_logged_in(session)) return result;
    (void)module_.call<&CK_FUNCTION_LIST::C_Logout>(session);
    return forward(state, call);
}

CK_RV Standing::set_attributes(State& state, const Call& call) {
    const auto* names = call.pointer<const CK_ATTRIBUTE>(2);
    const std::size_t count = names == nullptr ? 0 : call.arguments[3];
    const bool needless = has_names(module_, call.arguments[0], call.arguments[1], {names, count});
    return needless ? CKR_OK : forward(state, call);
}

CK_RV Standing::wait_for_slot_event(State& state, const Call& call) {
    {
        const Entered inside(state);
        if (!state.opening) return CKR_CRYPTOKI_NOT_INITIALIZED;
    }
    if (!call.is_in(*module_.list())) return CKR_FUNCTION_NOT_SUPPORTED;
    const CK_RV result = call.invoke(*module_.list(), call.arguments);
    if (result != CKR_OK) return result;
    const Entered inside(state);
    return give_number(state, *call.pointer<CK_SLOT_ID>(1));
}

} // namespace zvfront
