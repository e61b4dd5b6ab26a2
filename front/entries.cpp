#include "front/standing.h"
#include "pkcs11/forwarding.h"
#include "pkcs11/front_interface.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <new>
#include <utility>

#define ZVFRONT_EXPORT __attribute__((visibility("default")))

namespace zvfront {
namespace {

// A function list leads to one module, and its functions are not told which: each module has functions of its own.
constexpr std::size_t MOST_MODULES = 8;

// They last until the process has ended: other exit handlers may call them.
std::array<std::atomic<Standing*>, MOST_MODULES> standings;
std::atomic<std::size_t> current = MOST_MODULES;
std::mutex choosing;

CK_FUNCTION_LIST* list_of(std::size_t index);

// No exception leaves the module.
template <std::size_t index> CK_RV answer(const Call& call) noexcept {
    try {
        if (call.function != Function::C_GetFunctionList) return standings[index].load()->answer(call);
        const auto list = call.pointer<CK_FUNCTION_LIST_PTR>(0);
        if (list == nullptr) return CKR_ARGUMENTS_BAD;
        *list = list_of(index);
        return CKR_OK;
    } catch (const std::bad_alloc&) {
        return CKR_HOST_MEMORY;
    } catch (...) {
        return CKR_GENERAL_ERROR;
    }
}

template <std::size_t... index>
std::array<CK_FUNCTION_LIST, MOST_MODULES> make_lists(std::index_sequence<index...> /*all*/) {
    return {pkcs11::forwarding_list<answer<index>>()...};
}

CK_FUNCTION_LIST* list_of(std::size_t index) {
    static std::array<CK_FUNCTION_LIST, MOST_MODULES> lists =
        make_lists(std::make_index_sequence<MOST_MODULES>());
    return &lists[index];
}

void let_go_of_all() noexcept {
    try {
        for (const auto& standing : standings)
            if (Standing* one = standing.load()) one->let_go();
    } catch (...) {
        // The system takes back what they hold.
    }
}

// The place of the module's path, or a free one; MOST_MODULES when there is none.
std::size_t place_of(const std::string& path) {
    for (std::size_t i = 0; i < MOST_MODULES; ++i) {
        const Standing* one = standings[i].load();
        if (one == nullptr || one->path() == path) return i;
    }
    return MOST_MODULES;
}

bool stand_before(const char* module_path) {
    if (module_path == nullptr) return false;
    const std::lock_guard held(choosing);
    const std::string path = std::filesystem::canonical(module_path);
    const std::size_t place = place_of(path);
    if (place == MOST_MODULES) return false;
    if (standings[place].load() == nullptr) standings[place] = new Standing(path);
    current = place;
    return true;
}

} // namespace

void let_go_at_exit() {
    (void)std::atexit(let_go_of_all);
}

} // namespace zvfront

extern "C" {

ZVFRONT_EXPORT CK_RV C_GetFunctionList(CK_FUNCTION_LIST_PTR_PTR list) {
    const std::size_t place = zvfront::current;
    if (list == nullptr) return CKR_ARGUMENTS_BAD;
    if (place == zvfront::MOST_MODULES) return CKR_GENERAL_ERROR;
    *list = zvfront::list_of(place);
    return CKR_OK;
}

ZVFRONT_EXPORT int zvfront_stand_before(const char* module_path) {
    try {
        return zvfront::stand_before(module_path) ? 0 : 1;
    } catch (...) {
        return 1;
    }
}

ZVFRONT_EXPORT void zvfront_let_go() {
    zvfront::let_go_of_all();
}
}
