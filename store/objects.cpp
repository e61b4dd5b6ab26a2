#include "store/objects.h"

#include "card/session.h"

#include <algorithm>
#include <cstring>

namespace zv {

namespace {

// Gives the length as the module says it.
CK_RV read_one(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type, void* buffer,
               std::size_t size, CK_ULONG& length) {
    std::memset(buffer, 0, size);
    CK_ATTRIBUTE entry = {type, buffer, size};
    rv = call<&Functions::C_GetAttributeValue>(session, object, &entry, CK_ULONG{1});
    length = rv == CKR_OK ? entry.ulValueLen : 0;
    return rv;
}

} // namespace

CK_RV read_attribute(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type, void* buffer,
                     std::size_t size, std::size_t& length) {
    CK_ULONG given = 0;
    read_one(session, object, type, buffer, size, given);
    length = std::min<std::size_t>(given, size);
    return rv;
}

CK_RV read_whole(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type, void* buffer,
                 std::size_t size, std::size_t& length) {
    CK_ULONG given = 0;
    read_one(session, object, type, buffer, size, given);
    if (given > size) rv = CKR_BUFFER_TOO_SMALL;
    length = rv == CKR_OK ? given : 0;
    return rv;
}

CK_RV read_number(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type,
                  CK_ULONG& number) {
    std::size_t length = 0;
    read_attribute(session, object, type, &number, sizeof number, length);
    // A number that was promised and not given is none that anybody knows.
    if (rv == CKR_OK && length != sizeof number) number = CK_UNAVAILABLE_INFORMATION;
    if (rv != CKR_OK) number = 0;
    return rv;
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

CK_RV relabel_object(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, std::string_view text) {
    CK_ATTRIBUTE change[] = {attribute(CKA_ID, text), attribute(CKA_LABEL, text)};
    return rv = call<&Functions::C_SetAttributeValue>(session, object, change, CK_ULONG{2});
}

} // namespace zv
