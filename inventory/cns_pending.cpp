// Pending pair, pending marker and expiry date of a services card.
#include <cstdlib>
#include <cstring>

#include "diag/log.h"
#include "inventory/identifiers.h"
#include "util/guarded.h"
#include "util/text.h"

namespace {

bool isFiled(std::string_view id) {
    return id.starts_with(zv::SIGNATURE_SERIES) || id.starts_with(zv::AUTHENTICATION_SERIES);
}

bool readExpiry(CK_OBJECT_HANDLE object, char* expiry) {
    char value[16384];
    if (zv::readText(zv::hSession, object, CKA_VALUE, value) != CKR_OK) return false;
    WriteLog("Find_ALL_PendingCNS", "DATAFIELD_PDATA_CNS", 0, value, 0);
    getDtScadenza(value, expiry);
    return true;
}

bool gather(zv::IdentifierTables& tables, int* pendingCNS, char* expiry) {
    return zv::walkIdentities({}, [&](CK_OBJECT_HANDLE object, const zv::ObjectIdentity& identity) {
        char label[256];
        if (!zv::isTolerated(zv::readText(zv::hSession, object, CKA_LABEL, label))) return false;
        if (identity.objectClass != CKO_DATA) {
            if (isFiled(identity.id)) tables.file(identity.objectClass, identity.id);
            return true;
        }
        if (std::strcmp(label, "pending_CNS_key") == 0 && pendingCNS != nullptr) *pendingCNS = 1;
        return std::strcmp(label, "PDATA") != 0 || readExpiry(object, expiry);
    });
}

} // namespace

int Find_ALL_PendingCNS(int* pendingPRA, int* pendingAUT, int* pendingCNS, char* ckaidPRA, char* ckaidAUT,
                        char* expiry, bool) {
    int flags[2] = {};
    char keys[2][ZV_KEY_ID_SIZE], none[] = "";
    if (pendingPRA == nullptr) pendingPRA = &flags[0];
    if (pendingAUT == nullptr) pendingAUT = &flags[1];
    if (ckaidPRA == nullptr) ckaidPRA = keys[0];
    if (ckaidAUT == nullptr) ckaidAUT = keys[1];
    ckaidPRA[0] = '\0';
    ckaidAUT[0] = '\0';
    zv::IdentifierTables tables;
    if (!zv::guarded(false, [&] { return gather(tables, pendingCNS, expiry); })) return zv::SEARCH_FAILED;
    zv::takeFirstPending(tables, pendingPRA, pendingAUT, ckaidPRA, ckaidAUT);
    const bool pending = *pendingPRA == 1 && ckaidPRA[0] != '\0';
    const bool hasSignature = zv::readSignatureCertificates(tables, pending ? ckaidPRA : none);
    if (pending && ckaidPRA[0] == '\0') *pendingPRA = 0;
    if (tables.certificates.empty()) return 0;
    const bool hasAuthentication = zv::anyCertificate(
        tables, [](std::string_view id) { return id.starts_with(zv::AUTHENTICATION_SERIES); });
    if (hasSignature && *pendingPRA == 0 &&
        !zv::proposeFree(tables.publicKeys, zv::SIGNATURE_SERIES, ckaidPRA))
        return zv::SERIES_FULL;
    if (!hasAuthentication || *pendingAUT != 0) return 0;
    return zv::proposeFree(tables.publicKeys, zv::AUTHENTICATION_SERIES, ckaidAUT) ? 0 : zv::SERIES_FULL;
}

void getDtScadenza(char* pdata, char* out) {
    constexpr std::size_t LENGTH_AT = 6, MARK_AT = 8, DATE_AFTER = 20, DATE_LENGTH = 8;
    const std::string_view text = zv::orEmpty(pdata);
    if (out == nullptr || text.size() < MARK_AT) return;
    char mark[4], digits[3];
    zv::copyText(mark, text.substr(MARK_AT, 3));
    if (std::strcmp(_strupr(mark), "XXX") == 0) return;
    zv::copyText(digits, text.substr(LENGTH_AT, 2));
    const long length = std::strtol(digits, nullptr, 10);
    if (length <= 0) return;
    const std::size_t start = DATE_AFTER + static_cast<std::size_t>(length);
    if (start + DATE_LENGTH <= text.size())
        zv::copyText(out, DATE_LENGTH + 1, text.substr(start, DATE_LENGTH));
}
