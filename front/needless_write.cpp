#include "front/needless_write.h"

#include <algorithm>
#include <vector>

namespace zvfront {
namespace {

using Bytes = std::vector<unsigned char>;

// All else is written as it comes.
bool is_name(const CK_ATTRIBUTE& attribute) {
    return (attribute.type == CKA_ID || attribute.type == CKA_LABEL) && attribute.pValue != nullptr &&
           attribute.ulValueLen != 0;
}

Bytes bytes_of(const CK_ATTRIBUTE& name) {
    const auto* bytes = static_cast<const unsigned char*>(name.pValue);
    return {bytes, bytes + name.ulValueLen};
}

// As long as the name, each byte another than its own: where a module writes nothing the name does not stand.
Bytes room_for(const CK_ATTRIBUTE& name) {
    Bytes room = bytes_of(name);
    for (unsigned char& byte : room)
        byte ^= 0xFF;
    return room;
}

} // namespace

bool has_names(const pkcs11::Module& module, CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object,
               std::span<const CK_ATTRIBUTE> names) {
    if (names.empty() || !std::all_of(names.begin(), names.end(), is_name)) return false;
    std::vector<Bytes> rooms;
    std::vector<CK_ATTRIBUTE> asked;
    for (const CK_ATTRIBUTE& name : names) {
        rooms.push_back(room_for(name));
        asked.push_back({name.type, rooms.back().data(), name.ulValueLen});
    }
    if (module.call<&CK_FUNCTION_LIST::C_GetAttributeValue>(session, object, asked.data(),
                                                            CK_ULONG{asked.size()}) != CKR_OK)
        return false;
    for (std::size_t i = 0; i < names.size(); ++i)
        if (asked[i].ulValueLen != names[i].ulValueLen || rooms[i] != bytes_of(names[i])) return false;
    return true;
}

} // namespace zvfront
