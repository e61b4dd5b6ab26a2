#include "inventory/identifiers.h"

#include "store/deletion.h"
#include "util/text.h"

bool presente(const ckaid* table, const char* id) {
    const std::string_view wanted = zv::or_empty(id);
    return table != nullptr && std::any_of(table, table + ZV_CKAIDS, [wanted](const ckaid& record) {
               return zv::bounded_text(record.id, sizeof record.id) == wanted;
           });
}

namespace zv {

void IdentifierTable::add(std::string_view id) {
    copy_text(records_.emplace_back().id, id);
}

bool IdentifierTable::contains(std::string_view id) const {
    const std::string_view kept = id.substr(0, sizeof ckaid::id - 1);
    return std::any_of(begin(), end(), [kept](const ckaid& record) { return kept == record.id; });
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

bool in_series(std::string_view id, std::string_view series, char first, char last) {
    if (!id.starts_with(series) || id.size() == series.size()) return false;
    return id[series.size()] >= first && id[series.size()] <= last;
}

void take_first_pending(const IdentifierTables& tables, int* pending_pra, int* pending_aut, char* ckaid_pra,
                        char* ckaid_aut) {
    for_each_pending(tables, [&](std::string_view id) {
        const bool authentication = is_authentication(id);
        copy_text(authentication ? ckaid_aut : ckaid_pra, ZV_KEY_ID_SIZE, id);
        if (int* flag = authentication ? pending_aut : pending_pra) *flag = 1;
        return false;
    });
}

bool read_signature_certificates(const IdentifierTables& tables, char* key_pra) {
    use2048Bit = false;
    force2048PraGen = true;
    bool found = false;
    for (const ckaid& record : tables.certificates) {
        const std::string_view id = record.id;
        if (!id.starts_with(SIGNATURE_SERIES)) continue;
        found = true;
        if (in_series(id, SIGNATURE_SERIES, '3', '5')) use2048Bit = true;
        if (!is1205SerialToken) continue;
        force2048PraGen = true;
        if (in_series(key_pra, SIGNATURE_SERIES, '0', '2') && delete_all_with(hSession, key_pra))
            key_pra[0] = '\0';
    }
    return found;
}

bool propose_free(const IdentifierTable& public_keys, std::string_view series, char* out) {
    copy_text(out, ZV_KEY_ID_SIZE, series);
    for (int digit = 3; digit <= 5; ++digit) {
        char id[ZV_KEY_ID_SIZE];
        copy_text(id, series);
        append_text(id, ItoA(digit));
        if (public_keys.contains(id)) continue;
        copy_text(out, ZV_KEY_ID_SIZE, id);
        return true;
    }
    return false;
}

} // namespace zv
