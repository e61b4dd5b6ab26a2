#pragma once

#include "front/state.h"
#include "pkcs11/call.h"
#include "pkcs11/module.h"

#include <atomic>
#include <chrono>
#include <string>
#include <vector>

namespace zvfront {

using pkcs11::Call;
using pkcs11::Function;
using List = CK_FUNCTION_LIST;

// Modules remember what they have read of a card, and other programs may write to it. One that nobody has used for so long
// is started anew: somebody was asked something meanwhile, or turns to the card again.
constexpr std::chrono::seconds LONGEST_PAUSE{10};

// A module with the front before it. It stays in memory and is started once for what a process does without a pause; what
// its callers take for its end closes their sessions.
class Standing {
  public:
    // @throws pkcs11::NotLoaded, pkcs11::NotAModule
    explicit Standing(std::string module_path, std::chrono::milliseconds longest_pause = LONGEST_PAUSE);
    ~Standing();
    Standing(const Standing&) = delete;
    Standing& operator=(const Standing&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] CK_RV answer(const Call& call);
    // Ends the module if it was started here, and no call is under way.
    void let_go();

  private:
    [[nodiscard]] State& state();
    [[nodiscard]] CK_RV perform(State& state, const Call& call);

    [[nodiscard]] CK_RV initialize(State& state, const CK_C_INITIALIZE_ARGS* wishes);
    [[nodiscard]] bool is_worn(const State& state) const;
    [[nodiscard]] CK_RV start(State& state);
    [[nodiscard]] CK_RV start_module() const;
    [[nodiscard]] CK_RV finalize(State& state, const void* reserved) const;
    void end(State& state) const;

    [[nodiscard]] CK_RV list_slots(CK_BBOOL with_card, std::vector<CK_SLOT_ID>& slots) const;
    [[nodiscard]] CK_RV number_slots(State& state) const;
    [[nodiscard]] CK_RV look_for_slots(State& state) const;
    [[nodiscard]] CK_RV see_slots(State& state);
    [[nodiscard]] CK_RV give_number(State& state, CK_SLOT_ID& slot) const;
    [[nodiscard]] CK_RV get_slot_list(State& state, const Call& call);

    [[nodiscard]] CK_RV wait_for_slot_event(State& state, const Call& call);
    [[nodiscard]] CK_RV login(State& state, const Call& call);
    [[nodiscard]] CK_RV set_attributes(State& state, const Call& call);
    [[nodiscard]] CK_RV forward(State& state, Call call);
    static void note_objects(State& state, const Call& call);
    [[nodiscard]] CK_RV note(State& state, const Call& call) const;

    const std::string path_;
    const std::chrono::milliseconds longest_pause_;
    const pkcs11::Module module_;
    std::atomic<State*> state_;
};

// Has every module that was started end when the process does. (In entries.cpp, where the modules are.)
void let_go_at_exit();

} // namespace zvfront
