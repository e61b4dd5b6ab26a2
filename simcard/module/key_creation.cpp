#include "simcard/module/key_creation.h"

#include "simcard/module/forward.h"
#include "simcard/module/key_parts.h"

#include <algorithm>
#include <iterator>

namespace simcard {

Creation::Creation(const CK_ATTRIBUTE* attributes, CK_ULONG count, CK_OBJECT_CLASS object_class,
                   bool is_private)
    : object_class_(object_class), is_private_(is_private) {
    std::copy_if(attributes, attributes + count, std::back_inserter(entries_), [](const CK_ATTRIBUTE& entry) {
        return entry.type != CKA_MODULUS_BITS && entry.type != CKA_PUBLIC_EXPONENT;
    });
    add_unless_given(entry_for(CKA_CLASS, object_class_));
    add_unless_given(entry_for(CKA_KEY_TYPE, key_type_));
    add_unless_given(entry_for(CKA_PRIVATE, is_private_));
}

CK_RV Creation::create(CK_SESSION_HANDLE session, const RsaKey& key, std::size_t parts,
                       CK_OBJECT_HANDLE* handle) {
    for (std::size_t part = 0; part < parts; ++part)
        entries_.push_back(entry_of(PART_TYPES[part], key.numbers[part]));
    return forward<Function::C_CreateObject>(session, entries_.data(), CK_ULONG{entries_.size()}, handle);
}

void Creation::add_unless_given(const CK_ATTRIBUTE& entry) {
    const auto same = [&](const CK_ATTRIBUTE& given) { return given.type == entry.type; };
    if (std::none_of(entries_.begin(), entries_.end(), same)) entries_.push_back(entry);
}

} // namespace simcard
