#pragma once

#include "pkcs11/call.h"

namespace pkcs11 {

// Answers every call of a list.
using Answer = CK_RV (*)(const Call& call) noexcept;

template <Function F> using Signature = decltype(std::declval<CK_FUNCTION_LIST>().*MEMBER_OF<F>);

// A function of a module that stands before another: makes its arguments a Call, which is what `answer` gets.
template <Answer answer, Function F, class Type = std::remove_cvref_t<Signature<F>>> struct Entry;
template <Answer answer, Function F, class... A> struct Entry<answer, F, CK_RV (*)(A...)> {
    static CK_RV enter(A... arguments) noexcept { return answer(make_call<F>(arguments...)); }
};

// The function list of such a module.
template <Answer answer> CK_FUNCTION_LIST forwarding_list() {
    CK_FUNCTION_LIST list{};
    list.version = {2, 40};
#define PKCS11_PUT(name, parameters, names) list.name = Entry<answer, Function::name>::enter;
    CK_EACH_FUNCTION(PKCS11_PUT)
#undef PKCS11_PUT
    return list;
}

} // namespace pkcs11
