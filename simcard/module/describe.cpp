#include "simcard/module/describe.h"

#include "simcard/common/hexadecimal.h"

#include <algorithm>
#include <charconv>

namespace simcard {
namespace {

struct AttributeName {
    CK_ATTRIBUTE_TYPE type;
    const char* name;
};

#define ZVSIMCARD_NAMED(attribute)                                                                           \
    { attribute, #attribute }
constexpr AttributeName ATTRIBUTE_NAMES[] = {
    ZVSIMCARD_NAMED(CKA_CLASS),
    ZVSIMCARD_NAMED(CKA_TOKEN),
    ZVSIMCARD_NAMED(CKA_PRIVATE),
    ZVSIMCARD_NAMED(CKA_LABEL),
    ZVSIMCARD_NAMED(CKA_APPLICATION),
    ZVSIMCARD_NAMED(CKA_VALUE),
    ZVSIMCARD_NAMED(CKA_OBJECT_ID),
    ZVSIMCARD_NAMED(CKA_CERTIFICATE_TYPE),
    ZVSIMCARD_NAMED(CKA_ISSUER),
    ZVSIMCARD_NAMED(CKA_SERIAL_NUMBER),
    ZVSIMCARD_NAMED(CKA_KEY_TYPE),
    ZVSIMCARD_NAMED(CKA_SUBJECT),
    ZVSIMCARD_NAMED(CKA_ID),
    ZVSIMCARD_NAMED(CKA_SENSITIVE),
    ZVSIMCARD_NAMED(CKA_ENCRYPT),
    ZVSIMCARD_NAMED(CKA_DECRYPT),
    ZVSIMCARD_NAMED(CKA_WRAP),
    ZVSIMCARD_NAMED(CKA_UNWRAP),
    ZVSIMCARD_NAMED(CKA_SIGN),
    ZVSIMCARD_NAMED(CKA_VERIFY),
    ZVSIMCARD_NAMED(CKA_DERIVE),
    ZVSIMCARD_NAMED(CKA_MODULUS),
    ZVSIMCARD_NAMED(CKA_MODULUS_BITS),
    ZVSIMCARD_NAMED(CKA_PUBLIC_EXPONENT),
    ZVSIMCARD_NAMED(CKA_PRIVATE_EXPONENT),
    ZVSIMCARD_NAMED(CKA_PRIME_1),
    ZVSIMCARD_NAMED(CKA_PRIME_2),
    ZVSIMCARD_NAMED(CKA_EXPONENT_1),
    ZVSIMCARD_NAMED(CKA_EXPONENT_2),
    ZVSIMCARD_NAMED(CKA_COEFFICIENT),
    ZVSIMCARD_NAMED(CKA_EXTRACTABLE),
    ZVSIMCARD_NAMED(CKA_MODIFIABLE),
};
#undef ZVSIMCARD_NAMED

std::string hexadecimal_number(CK_ULONG number) {
    char digits[16];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number, 16).ptr;
    return "0x" + std::string(digits, end);
}

std::string name_of(CK_ATTRIBUTE_TYPE type) {
    for (const auto& [known, name] : ATTRIBUTE_NAMES)
        if (known == type) return name;
    return hexadecimal_number(type);
}

bool is_private_part(CK_ATTRIBUTE_TYPE type) {
    return type >= CKA_PRIVATE_EXPONENT && type <= CKA_COEFFICIENT;
}

std::string bytes_at(const void* place, CK_ULONG length) {
    return hexadecimal({static_cast<const char*>(place), length});
}

// "CKA_ID 255>3 445330": the room given, the length told, and the value where there is one in the room.
std::string describe_attribute(const CK_ATTRIBUTE& entry, CK_ULONG room, bool succeeded) {
    std::string text = name_of(entry.type) + " " + std::to_string(room);
    if (entry.ulValueLen != room) text += ">" + std::to_string(entry.ulValueLen);
    if (succeeded && entry.pValue && entry.ulValueLen <= room && !is_private_part(entry.type))
        text += " " + bytes_at(entry.pValue, entry.ulValueLen);
    return text;
}

std::string describe_template(const Call& call, const Rooms& rooms, std::size_t index, bool has_values) {
    std::string text = "{";
    for (std::size_t entry = 0; entry < rooms.lengths(index).size(); ++entry) {
        if (entry != 0) text += ", ";
        text += describe_attribute(call.pointer<CK_ATTRIBUTE>(index)[entry], rooms.lengths(index)[entry],
                                   has_values);
    }
    return text + "}";
}

std::string describe_mechanism(const CK_MECHANISM& mechanism) {
    std::string text = hexadecimal_number(mechanism.mechanism);
    if (mechanism.pParameter) text += " " + bytes_at(mechanism.pParameter, mechanism.ulParameterLen);
    return text;
}

// How many numbers stand where a parameter points: one, or as many as the call says within the caller's room.
CK_ULONG numbers_at(const Call& call, const Rooms& rooms, std::size_t index) {
    const auto& parameters = call.parameters();
    const bool is_search = call.function == Function::C_FindObjects;
    const std::size_t count = is_search ? index + 2 : index + 1;
    if (count >= parameters.size() || parameters[count].role != Role::size) return 1;
    if (call.arguments[count] == 0) return 0;
    return std::min(*call.pointer<CK_ULONG>(count),
                    is_search ? call.arguments[index + 1] : rooms.size(count));
}

std::string describe_numbers(const Call& call, const Rooms& rooms, std::size_t index) {
    std::string text;
    for (CK_ULONG i = 0; i < numbers_at(call, rooms, index); ++i)
        text += (i == 0 ? "" : ",") + std::to_string(call.pointer<CK_ULONG>(index)[i]);
    return text;
}

std::string describe_number(const Call& call, std::size_t index) {
    const auto type = call.parameters()[index].type;
    const CK_ULONG value = call.arguments[index];
    const bool in_bits = type == "CK_FLAGS" || type == "CK_MECHANISM_TYPE";
    return in_bits ? hexadecimal_number(value) : std::to_string(value);
}

// The text of an argument; none for what is not recorded.
std::optional<std::string> describe_argument(const Call& call, const Rooms& rooms, std::size_t index,
                                             bool succeeded) {
    const Role role = call.parameters()[index].role;
    const bool reads = call.function == Function::C_GetAttributeValue;
    if (role == Role::secret) return std::nullopt;
    if (role == Role::number || role == Role::slot || role == Role::session || role == Role::object)
        return describe_number(call, index);
    if (call.arguments[index] == 0) return "null";
    if (role == Role::attributes) return describe_template(call, rooms, index, succeeded || !reads);
    if (role == Role::mechanism) return describe_mechanism(*call.pointer<CK_MECHANISM>(index));
    if (!succeeded || role == Role::other) return std::nullopt;
    if (role == Role::size) return std::to_string(*call.pointer<CK_ULONG>(index));
    return describe_numbers(call, rooms, index);
}

} // namespace

std::string describe(const Call& call, const Rooms& rooms, std::optional<CK_RV> result) {
    const auto& parameters = call.parameters();
    std::string line(pkcs11::info(call.function).name);
    for (std::size_t i = 0; i < parameters.size(); ++i)
        if (const auto text = describe_argument(call, rooms, i, result == CKR_OK))
            line.append(" ").append(parameters[i].name).append("=").append(*text);
    return line + " -> " + (result ? hexadecimal_number(*result) : "killed");
}

} // namespace simcard
