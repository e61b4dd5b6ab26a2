#include "host/attributes.h"

#include <algorithm>
#include <cstring>

namespace zvhost {
namespace {

// What no attribute is: where the module wrote nothing, this still stands.
constexpr unsigned char UNWRITTEN = 0xFF;

// More than what is usually there, so that a length which stayed as it was given tells that nothing was written. Of
// two that have one size that is not said.
std::size_t usual_room(CK_ATTRIBUTE_TYPE type) {
    switch (type) {
    case CKA_CLASS:
        return sizeof(CK_OBJECT_CLASS);
    case CKA_ALWAYS_AUTHENTICATE:
        return sizeof(CK_BBOOL);
    case CKA_VALUE:
        return 8192;
    case CKA_MODULUS:
        return 1024;
    default:
        return 256;
    }
}

bool has_one_size(CK_ATTRIBUTE_TYPE type) {
    return type == CKA_CLASS || type == CKA_ALWAYS_AUTHENTICATE;
}

// Whether a result tells of single attributes, and the others were read.
bool tells_of_some(CK_RV result) {
    return result == CKR_ATTRIBUTE_SENSITIVE || result == CKR_ATTRIBUTE_TYPE_INVALID ||
           result == CKR_BUFFER_TOO_SMALL;
}

bool was_written(const CK_ATTRIBUTE& asked, const Bytes& room, CK_RV result) {
    if (has_one_size(asked.type))
        return asked.ulValueLen == room.size() &&
               std::any_of(room.begin(), room.end(), [](unsigned char byte) { return byte != UNWRITTEN; });
    // One that is too long is CK_UNAVAILABLE_INFORMATION, or what no module may answer.
    return asked.ulValueLen < room.size() || (result == CKR_OK && asked.ulValueLen == room.size());
}

} // namespace

Attributes::Attributes(const Session& session, CK_OBJECT_HANDLE object,
                       const std::vector<CK_ATTRIBUTE_TYPE>& types)
    : session_(session), object_(object) {
    std::vector<Bytes> rooms;
    std::vector<CK_ATTRIBUTE> asked;
    for (const CK_ATTRIBUTE_TYPE type : types) {
        rooms.emplace_back(usual_room(type), UNWRITTEN);
        asked.push_back({type, rooms.back().data(), rooms.back().size()});
    }
    const CK_RV result = session.read_at_once(object, asked);
    if (result != CKR_OK && !tells_of_some(result)) return;
    for (std::size_t i = 0; i < asked.size(); ++i) {
        if (!was_written(asked[i], rooms[i], result)) continue;
        rooms[i].resize(asked[i].ulValueLen);
        given_.push_back({types[i], std::move(rooms[i])});
    }
}

const Bytes* Attributes::given(CK_ATTRIBUTE_TYPE type) const {
    const auto found =
        std::find_if(given_.begin(), given_.end(), [&](const Given& one) { return one.type == type; });
    return found == given_.end() ? nullptr : &found->value;
}

Bytes Attributes::get(CK_ATTRIBUTE_TYPE type) const {
    const Bytes* value = given(type);
    return value != nullptr ? *value : session_.attribute(object_, type);
}

Bytes Attributes::get_if_given(CK_ATTRIBUTE_TYPE type) const {
    const Bytes* value = given(type);
    return value != nullptr ? *value : session_.attribute_if_given(object_, type);
}

CK_OBJECT_CLASS as_class(const Bytes& value) {
    CK_OBJECT_CLASS type = CKO_VENDOR_DEFINED;
    if (value.size() == sizeof type) std::memcpy(&type, value.data(), sizeof type);
    return type;
}

} // namespace zvhost
