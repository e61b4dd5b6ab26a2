#include "front/standing.h"

namespace zvfront {
namespace {

using Clock = std::chrono::steady_clock;

} // namespace

bool Standing::is_worn(const State& state) const {
    const bool unused = Clock::now() - state.closed > longest_pause_;
    return state.started == Started::here && (unused || state.objects.mixed_up());
}

CK_RV Standing::initialize(State& state, const CK_C_INITIALIZE_ARGS* wishes) {
    if (wishes != nullptr && wishes->pReserved != nullptr) return CKR_ARGUMENTS_BAD;
    if (state.opening) return CKR_CRYPTOKI_ALREADY_INITIALIZED;
    if (is_worn(state)) end(state);
    if (state.started == Started::no)
        if (const CK_RV result = start(state); result != CKR_OK) return result;
    state.opening.emplace();
    return CKR_OK;
}

CK_RV Standing::start_module() const {
    CK_C_INITIALIZE_ARGS threads{};
    threads.flags = CKF_OS_LOCKING_OK;
    const CK_RV result = module_.call<&List::C_Initialize>(&threads);
    // One that takes no locks is used all the same: the front lets one thread in at a time.
    const bool takes_none = result == CKR_CANT_LOCK || result == CKR_ARGUMENTS_BAD;
    return takes_none ? module_.call<&List::C_Initialize>(nullptr) : result;
}

CK_RV Standing::start(State& state) {
    CK_RV result = start_module();
    const bool of_parent = state.parents != nullptr && state.parents->started == Started::here;
    if (result == CKR_CRYPTOKI_ALREADY_INITIALIZED && of_parent) {
        // Such a module does not notice that this is another process than the one which started it.
        (void)module_.call<&List::C_Finalize>(nullptr);
        result = start_module();
    }
    state.objects = {};
    if (result == CKR_OK) {
        state.started = Started::here;
        // Exit handlers run last first: this one before those of what the module has started.
        let_go_at_exit();
    }
    if (result == CKR_CRYPTOKI_ALREADY_INITIALIZED) state.started = Started::elsewhere;
    return state.started == Started::no ? result : CKR_OK;
}

CK_RV Standing::finalize(State& state, const void* reserved) const {
    if (reserved != nullptr) return CKR_ARGUMENTS_BAD;
    // With its sessions the login ends: the next PIN reaches the card.
    for (const CK_SLOT_ID slot : state.opening->slots())
        (void)module_.call<&List::C_CloseAllSessions>(slot);
    state.opening.reset();
    state.closed = Clock::now();
    return CKR_OK;
}

void Standing::end(State& state) const {
    if (state.started == Started::here) (void)module_.call<&List::C_Finalize>(nullptr);
    state.started = Started::no;
}

void Standing::let_go() {
    State& here = state();
    // A process may end inside a call, or while another thread is in one.
    const std::unique_lock held(here.gate, std::try_to_lock);
    if (!held.owns_lock() || here.depth != 0) return;
    here.opening.reset();
    end(here);
}

} // namespace zvfront
