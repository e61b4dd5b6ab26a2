#include "pkcs11/forwarding.h"
#include "simcard/module/control.h"
#include "simcard/module/forward.h"
#include "simcard/module/own_functions.h"

#include <exception>
#include <iostream>
#include <new>

#define ZVSIMCARD_EXPORT __attribute__((visibility("default")))

namespace simcard {
namespace {

// Turns what went wrong inside into what a module answers: no exception leaves it.
CK_RV answer_of_failure() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return CKR_HOST_MEMORY;
    } catch (const std::exception& problem) {
        std::cerr << "zvsimcard: " << problem.what() << '\n';
    } catch (...) {
        std::cerr << "zvsimcard: unknown failure\n";
    }
    return CKR_DEVICE_ERROR;
}

// Does a call by a card's own function, or by SoftHSM's.
CK_RV perform(const Call& call) noexcept {
    try {
        return call.is_in(own_functions()) ? call.invoke(own_functions(), call.arguments) : forward(call);
    } catch (...) {
        return answer_of_failure();
    }
}

// The way that every call takes: the control stands around it.
CK_RV dispatch(const Call& call) noexcept {
    try {
        const std::lock_guard held(gate());
        return control().around(call, [&] { return perform(call); });
    } catch (...) {
        return answer_of_failure();
    }
}

} // namespace

const CK_FUNCTION_LIST& own_functions() {
    static const CK_FUNCTION_LIST list = [] {
        CK_FUNCTION_LIST mine{};
        mine.C_Initialize = own::initialize;
        mine.C_Finalize = own::finalize;
        mine.C_GetInfo = own::get_info;
        mine.C_GetFunctionList = own::get_function_list;
        mine.C_GetSlotList = own::get_slot_list;
        mine.C_GetSlotInfo = own::get_slot_info;
        mine.C_GetTokenInfo = own::get_token_info;
        mine.C_InitToken = own::init_token;
        mine.C_InitPIN = own::init_pin;
        mine.C_SetPIN = own::set_pin;
        mine.C_OpenSession = own::open_session;
        mine.C_CloseSession = own::close_session;
        mine.C_CloseAllSessions = own::close_all_sessions;
        mine.C_GetSessionInfo = own::get_session_info;
        mine.C_Login = own::login;
        mine.C_DestroyObject = own::destroy_object;
        mine.C_SetAttributeValue = own::set_attribute_value;
        mine.C_FindObjectsInit = own::find_objects_init;
        mine.C_FindObjects = own::find_objects;
        mine.C_FindObjectsFinal = own::find_objects_final;
        mine.C_GenerateKeyPair = own::generate_key_pair;
        return mine;
    }();
    return list;
}

CK_FUNCTION_LIST* public_functions() {
    static CK_FUNCTION_LIST list = pkcs11::forwarding_list<dispatch>();
    return &list;
}

} // namespace simcard

extern "C" {
#define ZVSIMCARD_DEFINE(name, parameters, names)                                                            \
    ZVSIMCARD_EXPORT CK_RV name parameters {                                                                 \
        /* NOLINTNEXTLINE(bugprone-macro-parentheses): names come with their own */                          \
        return pkcs11::Entry<simcard::dispatch, pkcs11::Function::name>::enter names;                        \
    }
CK_EACH_FUNCTION(ZVSIMCARD_DEFINE)
#undef ZVSIMCARD_DEFINE
}
