// Pending pair, pending marker and expiry date of a services card.
#include "diag/log.h"
#include "inventory/identifiers.h"
#include "util/guarded.h"
#include "util/text.h"

#include <cstdlib>
#include <cstring>

namespace {

bool is_filed(std::string_view id) {
    return id.starts_with(zv::SIGNATURE_SERIES) || id.starts_with(zv::AUTHENTICATION_SERIES);
}

bool read_expiry(CK_OBJECT_HANDLE object, char* expiry) {
    char value[16384];
    if (zv::read_text(zv::hSession, object, CKA_VALUE, value) != CKR_OK) return false;
    WriteLog("Find_ALL_PendingCNS", "DATAFIELD_PDATA_CNS", 0, value, 0);
    getDtScadenza(value, expiry);
    return true;
}

bool gather(zv::IdentifierTables& tables, int* pending_cns, char* expiry) {
    return zv::walk_identities({}, [&](CK_OBJECT_HANDLE object, const zv::ObjectIdentity& identity) {
        char label[256];
        if (!zv::is_tolerated(zv::read_text(zv::hSession, object, CKA_LABEL, label))) return false;
        if (identity.object_class != CKO_DATA) {
            if (is_filed(identity.id)) tables.file(identity.object_class, identity.id);
            return true;
        }
        if (std::strcmp(label, "pending_CNS_key") == 0 && pending_cns != nullptr) *pending_cns = 1;
        return std::strcmp(label, "PDATA") != 0 || read_expiry(object, expiry);
    });
}

} // namespace

int Find_ALL_PendingCNS(int* pending_pra, int* pending_aut, int* pending_cns, char* ckaid_pra,
                        char* ckaid_aut, char* expiry, bool) {
    int flags[2] = {};
    char keys[2][ZV_KEY_ID_SIZE], none[] = "";
    if (pending_pra == nullptr) pending_pra = &flags[0];
    if (pending_aut == nullptr) pending_aut = &flags[1];
    if (ckaid_pra == nullptr) ckaid_pra = keys[0];
    if (ckaid_aut == nullptr) ckaid_aut = keys[1];
    ckaid_pra[0] = '\0';
    ckaid_aut[0] = '\0';
    zv::IdentifierTables tables;
    if (!zv::guarded(false, [&] { return gather(tables, pending_cns, expiry); })) return zv::SEARCH_FAILED;
    zv::take_first_pending(tables, pending_pra, pending_aut, ckaid_pra, ckaid_aut);
    const bool pending = *pending_pra == 1 && ckaid_pra[0] != '\0';
    const bool has_signature = zv::read_signature_certificates(tables, pending ? ckaid_pra : none);
    if (pending && ckaid_pra[0] == '\0') *pending_pra = 0;
    if (tables.certificates.empty()) return 0;
    const bool has_authentication = zv::any_certificate(
        tables, [](std::string_view id) { return id.starts_with(zv::AUTHENTICATION_SERIES); });
    if (has_signature && *pending_pra == 0 &&
        !zv::propose_free(tables.public_keys, zv::SIGNATURE_SERIES, ckaid_pra))
        return zv::SERIES_FULL;
    if (!has_authentication || *pending_aut != 0) return 0;
    return zv::propose_free(tables.public_keys, zv::AUTHENTICATION_SERIES, ckaid_aut) ? 0 : zv::SERIES_FULL;
}

void getDtScadenza(char* pdata, char* out) {
    constexpr std::size_t length_at = 6, mark_at = 8, date_after = 20, date_length = 8;
    const std::string_view text = zv::or_empty(pdata);
    if (out == nullptr || text.size() < mark_at) return;
    char mark[4], digits[3];
    zv::copy_text(mark, text.substr(mark_at, 3));
    if (std::strcmp(_strupr(mark), "XXX") == 0) return;
    zv::copy_text(digits, text.substr(length_at, 2));
    const long length = std::strtol(digits, nullptr, 10);
    if (length <= 0) return;
    const std::size_t start = date_after + static_cast<std::size_t>(length);
    if (start + date_length <= text.size())
        zv::copy_text(out, date_length + 1, text.substr(start, date_length));
}
