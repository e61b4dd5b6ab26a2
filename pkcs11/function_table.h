#pragma once

#include "pkcs11.h"

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <vector>

namespace pkcs11 {

// The functions of PKCS#11, in the order of the function list.
enum class Function : unsigned {
#define PKCS11_NAME(name, parameters, names) name,
    CK_EACH_FUNCTION(PKCS11_NAME)
#undef PKCS11_NAME
};

#define PKCS11_ONE(name, parameters, names) Function::name,
inline constexpr std::size_t FUNCTION_COUNT =
    std::initializer_list<Function>{CK_EACH_FUNCTION(PKCS11_ONE)}.size();
#undef PKCS11_ONE

inline constexpr std::size_t MOST_PARAMETERS = 8;

// What a parameter is to a module that stands between its caller and another module.
enum class Role {
    number,
    slot,
    session,
    object,      // handle of an object
    new_objects, // where the handles of objects go
    numbers,     // where other handles, slots or mechanisms go
    size,        // where a length or a count goes
    attributes,  // a template; the parameter behind it is the count
    mechanism,
    secret, // a PIN or its length
    other,
};

struct Parameter {
    std::string_view type;
    std::string_view name;
    Role role;
};

struct FunctionInfo {
    std::string_view name;
    std::vector<Parameter> parameters;
};

// Name and parameters of a function.
[[nodiscard]] const FunctionInfo& info(Function function);

// Whether it makes objects, whose handles go where its parameters say.
[[nodiscard]] bool makes_objects(Function function);

// The function of that name, such as "C_Login".
[[nodiscard]] std::optional<Function> function_named(std::string_view name);

} // namespace pkcs11
