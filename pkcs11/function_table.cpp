#include "pkcs11/function_table.h"

#include <algorithm>
#include <array>
#include <utility>

namespace pkcs11 {
namespace {

constexpr std::pair<std::string_view, Role> ROLE_OF_TYPE[] = {
    {"CK_SLOT_ID", Role::slot},
    {"CK_SESSION_HANDLE", Role::session},
    {"CK_OBJECT_HANDLE", Role::object},
    {"CK_OBJECT_HANDLE_PTR", Role::new_objects},
    {"CK_SESSION_HANDLE_PTR", Role::numbers},
    {"CK_SLOT_ID_PTR", Role::numbers},
    {"CK_MECHANISM_TYPE_PTR", Role::numbers},
    {"CK_ULONG_PTR", Role::size},
    {"CK_ATTRIBUTE_PTR", Role::attributes},
    {"CK_MECHANISM_PTR", Role::mechanism},
    {"CK_ULONG", Role::number},
    {"CK_FLAGS", Role::number},
    {"CK_USER_TYPE", Role::number},
    {"CK_MECHANISM_TYPE", Role::number},
    {"CK_BBOOL", Role::number},
};

constexpr std::string_view SECRETS[] = {"pPin", "ulPinLen", "pOldPin", "ulOldLen", "pNewPin", "ulNewLen"};

Role role_of(std::string_view type, std::string_view name) {
    if (std::find(std::begin(SECRETS), std::end(SECRETS), name) != std::end(SECRETS)) return Role::secret;
    for (const auto& [known, role] : ROLE_OF_TYPE)
        if (known == type) return role;
    return Role::other;
}

// Takes apart a list such as "(CK_SLOT_ID slotID, CK_SLOT_INFO_PTR pInfo)".
std::vector<Parameter> parse(std::string_view text) {
    std::vector<Parameter> parameters;
    text = text.substr(1, text.size() - 2);
    while (!text.empty()) {
        const auto end = std::min(text.find(','), text.size());
        const auto one = text.substr(0, end);
        const auto start = one.find_first_not_of(' ');
        const auto blank = one.rfind(' ');
        const auto type = one.substr(start, blank - start);
        const auto name = one.substr(blank + 1);
        parameters.push_back({type, name, role_of(type, name)});
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parameters;
}

const std::array<FunctionInfo, FUNCTION_COUNT>& table() {
    static const std::array<FunctionInfo, FUNCTION_COUNT> functions = {{
#define PKCS11_ROW(name, parameters, names) {#name, parse(#parameters)},
        CK_EACH_FUNCTION(PKCS11_ROW)
#undef PKCS11_ROW
    }};
    return functions;
}

} // namespace

const FunctionInfo& info(Function function) {
    return table()[static_cast<std::size_t>(function)];
}

bool makes_objects(Function function) {
    const auto& parameters = info(function).parameters;
    return function != Function::C_FindObjects &&
           std::any_of(parameters.begin(), parameters.end(),
                       [](const Parameter& parameter) { return parameter.role == Role::new_objects; });
}

std::optional<Function> function_named(std::string_view name) {
    for (std::size_t i = 0; i < FUNCTION_COUNT; ++i)
        if (table()[i].name == name) return static_cast<Function>(i);
    return std::nullopt;
}

} // namespace pkcs11
