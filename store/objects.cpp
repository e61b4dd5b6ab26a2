#include "store/objects.h"

#include "card/session.h"

#include <algorithm>

namespace zv {

Read read_attribute(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type,
                    std::span<std::byte> room, TooLong too_long) {
    std::fill(room.begin(), room.end(), std::byte{0}); // at once, which ranges::fill is not everywhere
    CK_ATTRIBUTE entry = {type, room.data(), room.size()};
    rv = call<&Functions::C_GetAttributeValue>(session, object, &entry, CK_ULONG{1});
    if (rv == CKR_OK && too_long == TooLong::fails && entry.ulValueLen > room.size())
        rv = CKR_BUFFER_TOO_SMALL;
    return {rv, rv == CKR_OK ? std::min<std::size_t>(entry.ulValueLen, room.size()) : 0};
}

CK_RV read_number(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type,
                  CK_ULONG& number) {
    const Read read = read_attribute(session, object, type, std::as_writable_bytes(std::span(&number, 1)));
    // A number that was promised and not given is none that anybody knows.
    if (read.length != sizeof number) number = read.code == CKR_OK ? CK_UNAVAILABLE_INFORMATION : 0;
    return read.code;
}

bool is_tolerated(CK_RV result) {
    return result == CKR_OK || result == CKR_ATTRIBUTE_SENSITIVE || result == CKR_ATTRIBUTE_TYPE_INVALID;
}

CK_ATTRIBUTE attribute(CK_ATTRIBUTE_TYPE type, const void* value, std::size_t length) {
    return {type, const_cast<void*>(value), length};
}

CK_ATTRIBUTE attribute(CK_ATTRIBUTE_TYPE type, std::string_view text) {
    return attribute(type, text.data(), text.size());
}

CK_RV destroy_object(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object) {
    return rv = call<&Functions::C_DestroyObject>(session, object);
}

} // namespace zv
