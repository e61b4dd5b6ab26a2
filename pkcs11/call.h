#pragma once

#include "pkcs11/function_table.h"

#include <array>
#include <bit>
#include <span>
#include <type_traits>
#include <utility>

namespace pkcs11 {

// Each function's place in the function list.
template <Function> inline constexpr auto MEMBER_OF = nullptr;
#define PKCS11_MEMBER(name, parameters, names)                                                               \
    template <> inline constexpr auto MEMBER_OF<Function::name> = &CK_FUNCTION_LIST::name;
CK_EACH_FUNCTION(PKCS11_MEMBER)
#undef PKCS11_MEMBER

// Calls a function of a list with arguments that were made numbers.
using Invoke = CK_RV (*)(const CK_FUNCTION_LIST& list, std::span<const CK_ULONG> arguments);

// One call, its arguments as numbers: a pointer is its address.
struct Call {
    Function function;
    std::array<CK_ULONG, MOST_PARAMETERS> arguments;
    Invoke invoke;
    bool (*is_in)(const CK_FUNCTION_LIST& list); // whether a list has the function

    [[nodiscard]] const std::vector<Parameter>& parameters() const { return info(function).parameters; }

    // An argument that is a pointer.
    template <class T> [[nodiscard]] T* pointer(std::size_t index) const {
        return std::bit_cast<T*>(arguments[index]);
    }
};

template <class T> CK_ULONG to_number(T value) {
    if constexpr (std::is_pointer_v<T>) {
        return std::bit_cast<CK_ULONG>(value);
    } else {
        static_assert(sizeof(T) <= sizeof(CK_ULONG));
        return value;
    }
}

template <class T> T from_number(CK_ULONG number) {
    if constexpr (std::is_pointer_v<T>)
        return std::bit_cast<T>(number);
    else
        return static_cast<T>(number);
}

template <Function F, class... A> Call make_call(A... arguments) {
    constexpr Invoke invoke = [](const CK_FUNCTION_LIST& list, std::span<const CK_ULONG> numbers) {
        return [&]<std::size_t... I>(std::index_sequence<I...>) {
            return (list.*MEMBER_OF<F>)(from_number<A>(numbers[I])...);
        }
        (std::index_sequence_for<A...>{});
    };
    constexpr auto is_in = [](const CK_FUNCTION_LIST& list) { return list.*MEMBER_OF<F> != nullptr; };
    return Call{F, {to_number(arguments)...}, invoke, is_in};
}

} // namespace pkcs11
