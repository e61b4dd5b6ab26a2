// The inventory of a card that is not a services card.
#include "diag/log.h"
#include "inventory/certificates.h"
#include "store/renewal_state.h"
#include "util/guarded.h"
#include "util/text.h"

#include <cstring>

namespace {

constexpr std::size_t AUTHORITY_LABEL_LENGTH = 20;

void log_call(const char* name, CK_RV result) {
    if (result == CKR_OK) return zv::trace(name, "OK");
    static constexpr struct {
        const char* call;
        const char* text;
    } failures[] = {{"C_GetSlotInfo", "Get Slot Info: "},
                    {"C_GetTokenInfo", "Get Token Info: "},
                    {"C_FindObjectsInit", "Find Objects Init: "},
                    {"C_FindObjects", "Find Objects: "},
                    {"C_FindObjectsFinal", "Find Objects Final: "}};
    for (const auto& [call, text] : failures)
        if (std::strcmp(call, name) == 0)
            WriteErr(name, text, 0, CatItoAHex1("Errore = ", static_cast<int>(result)), 0);
}

constexpr zv::SearchLog INVENTORY_LOG = {
    .after = [](const zv::SearchCall& call) { log_call(call.name, call.result); }};

constexpr zv::SearchLog PENDING_LOG = {.after = [](const zv::SearchCall& call) {
    char title[64] = "Find_ALL_Pending: ";
    zv::append_text(title, call.name);
    zv::trace(title, call.result == CKR_OK ? "OK" : CatLtoAHex1("Errore = ", static_cast<long>(call.result)));
}};

bool list_certificates(zv::FoundCertificates& found) {
    return zv::guarded(
        false, [&] { return zv::probe_token(log_call) && found.read(INVENTORY_LOG, zv::ALWAYS_ENDED); });
}

bool is_authority(const zv::Certificate& certificate) {
    return std::strncmp(certificate.label, zv::CAcertificateLabel, AUTHORITY_LABEL_LENGTH) == 0;
}

bool is_signature(std::string_view id) {
    return id.starts_with("Sign_Keypair") || zv::in_series(id, zv::SIGNATURE_SERIES, '0', '9');
}

bool marks_signature(std::string_view id) {
    return id.starts_with("Sign_Keypair") || id.starts_with(zv::SIGNATURE_SERIES);
}

} // namespace

int NewFind_ALL_CertsKeysRenew(char** pra_list, char** aut_list, char* pra_record, long pra_record_size,
                               char* pra_subject, long, char* aut_record, long aut_record_size,
                               char* aut_subject, long, char* aut_id, char* pra_id, int* pending_pra,
                               int* pending_aut, char* ckaid_pra, char* ckaid_aut) {
    zv::FoundCertificates found;
    if (!list_certificates(found)) return -1;
    zv::RecordList pra(pra_list, pra_record, pra_record_size);
    zv::RecordList aut(aut_list, aut_record, aut_record_size);
    zv::CertificateFields fields;
    for (zv::Certificate* each : found) {
        zv::Certificate& certificate = *each;
        if (is_authority(certificate)) continue;
        if (pra.count() + aut.count() == static_cast<int>(zv::MOST_CERTIFICATES)) break;
        fields.read(certificate, zv::rewrite_name);
        const std::string_view id = zv::id_of(certificate.id);
        if (is_signature(id)) {
            zv::keep_last(fields, certificate, pra_subject, pra_id);
            pra.add_signature(fields, id);
        } else {
            zv::keep_last(fields, certificate, aut_subject, aut_id);
            aut.add_authentication(fields, id);
        }
    }
    zv::trace("Inizializzazione Buffers: inizio", "szCertPRAStore, szCertAUTStore");
    pra.write_count();
    aut.write_count();
    zv::trace("Inizializzazione Buffers: fine", "");
    zv::trace("Find_ALL_Pending", "Inizio");
    Find_ALL_Pending(pending_pra, pending_aut, ckaid_pra, ckaid_aut);
    zv::trace("Find_ALL_Pending", "Fine");
    // Both marks hang on the signature certificates and their flag alone.
    if (pra.count() != 0 && pending_pra != nullptr && *pending_pra == 1) {
        pra.mark(zv::or_empty(ckaid_pra));
        aut.mark(zv::or_empty(ckaid_aut));
    }
    zv::trace("NewFind_ALL_CertsKeysRenew: ", "return 0 (OK)");
    return 0;
}

int Find_ALL_Pending(int* pending_pra, int* pending_aut, char* ckaid_pra, char* ckaid_aut) {
    static constexpr char title[] = "Find_ALL_Pending: ";
    zv::copy_text(ckaid_pra, ZV_KEY_ID_SIZE, "");
    zv::copy_text(ckaid_aut, ZV_KEY_ID_SIZE, "");
    zv::IdentifierTables tables;
    if (!zv::guarded(false, [&] { return zv::gather_identifiers(tables, PENDING_LOG); }))
        return zv::SEARCH_FAILED;
    zv::trace(title, "Loop sulle chiavi pubbliche: inizio");
    zv::take_first_pending(tables, pending_pra, pending_aut, ckaid_pra, ckaid_aut);
    zv::trace(title, "Loop sulle chiavi pubbliche: fine");
    if (tables.certificates.empty()) return 0;
    const auto wanted = [](const int* pending) { return pending == nullptr || *pending == 0; };
    if (zv::any_certificate(tables, marks_signature) && wanted(pending_pra) &&
        !zv::propose_free(tables.public_keys, zv::SIGNATURE_SERIES, ckaid_pra))
        return zv::SERIES_FULL;
    if (zv::any_certificate(tables, [](std::string_view id) { return !marks_signature(id); }) &&
        wanted(pending_aut) && !zv::propose_free(tables.public_keys, zv::AUTHENTICATION_SERIES, ckaid_aut))
        return zv::SERIES_FULL;
    zv::trace(title, "return 0 (OK)");
    return 0;
}
