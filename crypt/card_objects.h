#pragma once

#include "crypt/bytes.h"
#include "crypt/session.h"

#include <vector>

// The card's objects. Cards are slow: handles are fetched in batches, and an object's attributes in one call with room
// enough.
namespace zvcrypt {

[[nodiscard]] CK_ATTRIBUTE attribute_of(CK_ATTRIBUTE_TYPE type, const void* value, std::size_t size);

[[nodiscard]] CK_ATTRIBUTE attribute_into(CK_ATTRIBUTE_TYPE type, Bytes& room);

// The bytes that a read left in its room; none when the attribute is absent or the module's length absurd.
[[nodiscard]] Bytes value_of(const CK_ATTRIBUTE& attribute, const Bytes& room);

// Every object with these attributes.
[[nodiscard]] std::vector<CK_OBJECT_HANDLE> find_objects(const Session& session,
                                                         std::vector<CK_ATTRIBUTE> attributes);

// A read that left some attributes out still gives the others.
[[nodiscard]] bool gave_something(CK_RV result);

} // namespace zvcrypt
