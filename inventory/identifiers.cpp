#include "inventory/identifiers.h"

#include "util/text.h"

bool presente(const ckaid* table, const char* id) {
    const std::string_view wanted = zv::orEmpty(id);
    return table != nullptr && std::any_of(table, table + ZV_CKAIDS, [wanted](const ckaid& record) {
               return zv::boundedText(record.id, sizeof record.id) == wanted;
           });
}

namespace zv {

void IdentifierTable::add(std::string_view id) {
    copyText(records_.emplace_back().id, id);
}

bool IdentifierTable::contains(std::string_view id) const {
    const std::string_view kept = id.substr(0, sizeof ckaid::id - 1);
    return std::any_of(begin(), end(), [kept](const ckaid& record) { return kept == record.id; });
}

void IdentifierTables::file(CK_OBJECT_CLASS objectClass, std::string_view id) {
    switch (objectClass) {
    case CKO_PUBLIC_KEY:
        return publicKeys.add(id);
    case CKO_PRIVATE_KEY:
        return privateKeys.add(id);
    case CKO_CERTIFICATE:
        return certificates.add(id);
    default:
        return;
    }
}

bool ObjectIdentity::read(CK_OBJECT_HANDLE object) {
    return isTolerated(readNumber(hSession, object, CKA_CLASS, objectClass)) &&
           isTolerated(readNumber(hSession, object, CKA_KEY_TYPE, keyType)) &&
           isTolerated(readText(hSession, object, CKA_ID, id));
}

bool gatherIdentifiers(IdentifierTables& tables, const SearchLog& log) {
    return walkIdentities(log, [&tables](CK_OBJECT_HANDLE object, const ObjectIdentity& identity) {
        char value[16384];
        if (!isTolerated(readText(hSession, object, CKA_VALUE, value))) return false;
        tables.file(identity.objectClass, identity.id);
        return true;
    });
}

bool inSeries(std::string_view id, std::string_view series, char first, char last) {
    if (!id.starts_with(series) || id.size() == series.size()) return false;
    return id[series.size()] >= first && id[series.size()] <= last;
}

void takeFirstPending(const IdentifierTables& tables, int* pendingPRA, int* pendingAUT, char* ckaidPRA,
                      char* ckaidAUT) {
    forEachPending(tables, [&](std::string_view id) {
        const bool authentication = isAuthentication(id);
        copyText(authentication ? ckaidAUT : ckaidPRA, ZV_KEY_ID_SIZE, id);
        if (int* flag = authentication ? pendingAUT : pendingPRA) *flag = 1;
        return false;
    });
}

bool readSignatureCertificates(const IdentifierTables& tables, char* keyPRA) {
    use2048Bit = false;
    force2048PraGen = true;
    bool found = false;
    for (const ckaid& record : tables.certificates) {
        const std::string_view id = record.id;
        if (!id.starts_with(SIGNATURE_SERIES)) continue;
        found = true;
        if (inSeries(id, SIGNATURE_SERIES, '3', '5')) use2048Bit = true;
        if (!is1205SerialToken) continue;
        force2048PraGen = true;
        if (inSeries(keyPRA, SIGNATURE_SERIES, '0', '2') && DeleteObjectByLabel(hSession, keyPRA) == 0)
            keyPRA[0] = '\0';
    }
    return found;
}

bool proposeFree(const IdentifierTable& publicKeys, std::string_view series, char* out) {
    copyText(out, ZV_KEY_ID_SIZE, series);
    for (int digit = 3; digit <= 5; ++digit) {
        char id[ZV_KEY_ID_SIZE];
        copyText(id, series);
        appendText(id, ItoA(digit));
        if (publicKeys.contains(id)) continue;
        copyText(out, ZV_KEY_ID_SIZE, id);
        return true;
    }
    return false;
}

} // namespace zv
