#include "crypt/card_objects.h"

#include "zvConstants.h"

#include <array>

namespace zvcrypt {
namespace {

constexpr std::size_t HANDLES_PER_CALL = 64;

// Ends a search whatever becomes of it.
class Search {
  public:
    Search(const Session& session, std::vector<CK_ATTRIBUTE> attributes) : session_(session) {
        check("C_FindObjectsInit", session_.call(&CK_FUNCTION_LIST::C_FindObjectsInit, attributes.data(),
                                                 static_cast<CK_ULONG>(attributes.size())));
    }
    ~Search() { (void)session_.call(&CK_FUNCTION_LIST::C_FindObjectsFinal); }
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;

    [[nodiscard]] std::vector<CK_OBJECT_HANDLE> handles() const;

  private:
    const Session& session_;
};

std::vector<CK_OBJECT_HANDLE> Search::handles() const {
    std::vector<CK_OBJECT_HANDLE> all;
    std::array<CK_OBJECT_HANDLE, HANDLES_PER_CALL> some{};
    CK_ULONG count = 0;
    do {
        count = 0;
        check("C_FindObjects", session_.call(&CK_FUNCTION_LIST::C_FindObjects, some.data(),
                                             static_cast<CK_ULONG>(some.size()), &count));
        if (count > some.size() || all.size() + count > ZV_OBJECTS_MAX)
            throw Failure(ZVC_ERR_MODULE_ANSWER,
                          "Il modulo PKCS#11 ha dato un numero di oggetti impossibile");
        all.insert(all.end(), some.begin(), some.begin() + static_cast<std::ptrdiff_t>(count));
    } while (count != 0);
    return all;
}

} // namespace

CK_ATTRIBUTE attribute_of(CK_ATTRIBUTE_TYPE type, const void* value, std::size_t size) {
    return {type, const_cast<void*>(value), static_cast<CK_ULONG>(size)};
}

CK_ATTRIBUTE attribute_into(CK_ATTRIBUTE_TYPE type, Bytes& room) {
    return {type, room.data(), static_cast<CK_ULONG>(room.size())};
}

Bytes value_of(const CK_ATTRIBUTE& attribute, const Bytes& room) {
    if (attribute.ulValueLen > room.size()) return {};
    return {room.begin(), room.begin() + static_cast<std::ptrdiff_t>(attribute.ulValueLen)};
}

std::vector<CK_OBJECT_HANDLE> find_objects(const Session& session, std::vector<CK_ATTRIBUTE> attributes) {
    return Search(session, std::move(attributes)).handles();
}

bool gave_something(CK_RV result) {
    return result == CKR_OK || result == CKR_ATTRIBUTE_SENSITIVE || result == CKR_ATTRIBUTE_TYPE_INVALID ||
           result == CKR_BUFFER_TOO_SMALL;
}

} // namespace zvcrypt
