#include "inventory/identifiers.h"

#include "util/text.h"

namespace zv {

void IdentifierTable::add(std::string_view id) {
    copy_text(records_.emplace_back().id, id);
}

bool IdentifierTable::contains(std::string_view id) const {
    return has_record(records_, id.substr(0, sizeof ckaid::id - 1));
}

void IdentifierTables::file(CK_OBJECT_CLASS object_class, std::string_view id) {
    switch (object_class) {
    case CKO_PUBLIC_KEY:
        return public_keys.add(id);
    case CKO_PRIVATE_KEY:
        return private_keys.add(id);
    case CKO_CERTIFICATE:
        return certificates.add(id);
    default:
        return;
    }
}

bool ObjectIdentity::read(CK_OBJECT_HANDLE object) {
    return is_tolerated(read_number(hSession, object, CKA_CLASS, object_class)) &&
           is_tolerated(read_number(hSession, object, CKA_KEY_TYPE, key_type)) &&
           is_tolerated(read_text(hSession, object, CKA_ID, id));
}

bool gather_identifiers(IdentifierTables& tables, const SearchLog& log) {
    return walk_identities(log, [&tables](CK_OBJECT_HANDLE object, const ObjectIdentity& identity) {
        char value[16384];
        if (!is_tolerated(read_text(hSession, object, CKA_VALUE, value))) return false;
        tables.file(identity.object_class, identity.id);
        return true;
    });
}

bool has_record(std::span<const ckaid> records, std::string_view id) {
    return std::any_of(records.begin(), records.end(),
                       [id](const ckaid& record) { return bounded_text(record.id, sizeof record.id) == id; });
}

} // namespace zv
