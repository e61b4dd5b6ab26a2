#include "simcard/common/card_folder.h"
#include "simcard/module/control.h"
#include "simcard/module/own_functions.h"
#include "simcard/module/state.h"

#include <iostream>
#include <memory>

namespace fs = std::filesystem;

namespace simcard::own {
namespace {

// The folder of cards, made when it is not there: SoftHSM does not start without one.
fs::path existing_home() {
    fs::path home = cards_home();
    std::error_code error;
    if (!fs::exists(home, error)) {
        fs::create_directories(home, error);
        fs::permissions(home, fs::perms::owner_all, error);
    }
    return home;
}

std::vector<Card> cards_in(const fs::path& home) {
    std::vector<std::string> problems;
    auto cards = list_cards(home, &problems);
    for (const std::string& problem : problems)
        std::cerr << "zvsimcard: " << problem << '\n';
    return cards;
}

} // namespace

CK_RV initialize(CK_VOID_PTR init_args) {
    if (state().hsm) return CKR_CRYPTOKI_ALREADY_INITIALIZED;
    if (!control().environment_understood()) return CKR_GENERAL_ERROR;
    try {
        const fs::path home = existing_home();
        const auto cards = cards_in(home);
        auto hsm = std::make_unique<SoftHsm>(home, init_args);
        state().slots = make_slots(cards, *hsm);
        state().hsm = hsm.release();
        return CKR_OK;
    } catch (const SoftHsmProblem& problem) {
        std::cerr << "zvsimcard: " << problem.what() << '\n';
        return problem.code();
    }
}

CK_RV finalize(CK_VOID_PTR reserved) {
    if (!state().hsm) return CKR_CRYPTOKI_NOT_INITIALIZED;
    if (reserved) return CKR_ARGUMENTS_BAD;
    delete state().hsm;
    state() = State{};
    return CKR_OK;
}

CK_RV get_function_list(CK_FUNCTION_LIST_PTR_PTR list) {
    if (!list) return CKR_ARGUMENTS_BAD;
    *list = public_functions();
    return CKR_OK;
}

} // namespace simcard::own
