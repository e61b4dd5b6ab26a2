// The inventory of a card that is not a services card.
#include <cstring>

#include "diag/log.h"
#include "inventory/certificates.h"
#include "store/renewal_state.h"
#include "util/guarded.h"
#include "util/text.h"

namespace {

constexpr std::size_t AUTHORITY_LABEL_LENGTH = 20;

void logCall(const char* name, CK_RV result) {
    if (result == CKR_OK) return zv::trace(name, "OK");
    static constexpr struct {
        const char* call;
        const char* text;
    } FAILURES[] = {{"C_GetSlotInfo", "Get Slot Info: "},
                    {"C_GetTokenInfo", "Get Token Info: "},
                    {"C_FindObjectsInit", "Find Objects Init: "},
                    {"C_FindObjects", "Find Objects: "},
                    {"C_FindObjectsFinal", "Find Objects Final: "}};
    for (const auto& [call, text] : FAILURES)
        if (std::strcmp(call, name) == 0)
            WriteErr(name, text, 0, CatItoAHex1("Errore = ", static_cast<int>(result)), 0);
}

constexpr zv::SearchLog INVENTORY_LOG = {
    .after = [](const zv::SearchCall& call) { logCall(call.name, call.result); }};

constexpr zv::SearchLog PENDING_LOG = {.after = [](const zv::SearchCall& call) {
    char title[64] = "Find_ALL_Pending: ";
    zv::appendText(title, call.name);
    zv::trace(title, call.result == CKR_OK ? "OK" : CatLtoAHex1("Errore = ", static_cast<long>(call.result)));
}};

bool listCertificates(zv::FoundCertificates& found) {
    return zv::guarded(
        false, [&] { return zv::probeToken(logCall) && found.read(INVENTORY_LOG, zv::ALWAYS_ENDED); });
}

bool isAuthority(const zv::Certificate& certificate) {
    return std::strncmp(certificate.label, zv::CAcertificateLabel, AUTHORITY_LABEL_LENGTH) == 0;
}

bool isSignature(std::string_view id) {
    return id.starts_with("Sign_Keypair") || zv::inSeries(id, zv::SIGNATURE_SERIES, '0', '9');
}

bool marksSignature(std::string_view id) {
    return id.starts_with("Sign_Keypair") || id.starts_with(zv::SIGNATURE_SERIES);
}

} // namespace

int NewFind_ALL_CertsKeysRenew(char** praList, char** autList, char* praRecord, long praRecordSize,
                               char* praSubject, long, char* autRecord, long autRecordSize, char* autSubject,
                               long, char* autId, char* praId, int* pendingPRA, int* pendingAUT,
                               char* ckaidPRA, char* ckaidAUT) {
    zv::FoundCertificates found;
    if (!listCertificates(found)) return -1;
    zv::RecordList pra(praList, praRecord, praRecordSize);
    zv::RecordList aut(autList, autRecord, autRecordSize);
    zv::CertificateFields fields;
    for (zv::Certificate* each : found) {
        zv::Certificate& certificate = *each;
        if (isAuthority(certificate)) continue;
        if (pra.count() + aut.count() == static_cast<int>(zv::MOST_CERTIFICATES)) break;
        fields.read(certificate, zv::rewriteName);
        const std::string_view id = zv::idOf(certificate.id);
        if (isSignature(id)) {
            zv::keepLast(fields, certificate, praSubject, praId);
            pra.addSignature(fields, id);
        } else {
            zv::keepLast(fields, certificate, autSubject, autId);
            aut.addAuthentication(fields, id);
        }
    }
    zv::trace("Inizializzazione Buffers: inizio", "szCertPRAStore, szCertAUTStore");
    pra.writeCount();
    aut.writeCount();
    zv::trace("Inizializzazione Buffers: fine", "");
    zv::trace("Find_ALL_Pending", "Inizio");
    Find_ALL_Pending(pendingPRA, pendingAUT, ckaidPRA, ckaidAUT);
    zv::trace("Find_ALL_Pending", "Fine");
    // Both marks hang on the signature certificates and their flag alone.
    if (pra.count() != 0 && pendingPRA != nullptr && *pendingPRA == 1) {
        pra.mark(zv::orEmpty(ckaidPRA));
        aut.mark(zv::orEmpty(ckaidAUT));
    }
    zv::trace("NewFind_ALL_CertsKeysRenew: ", "return 0 (OK)");
    return 0;
}

int Find_ALL_Pending(int* pendingPRA, int* pendingAUT, char* ckaidPRA, char* ckaidAUT) {
    static constexpr char title[] = "Find_ALL_Pending: ";
    zv::copyText(ckaidPRA, ZV_KEY_ID_SIZE, "");
    zv::copyText(ckaidAUT, ZV_KEY_ID_SIZE, "");
    zv::IdentifierTables tables;
    if (!zv::guarded(false, [&] { return zv::gatherIdentifiers(tables, PENDING_LOG); }))
        return zv::SEARCH_FAILED;
    zv::trace(title, "Loop sulle chiavi pubbliche: inizio");
    zv::takeFirstPending(tables, pendingPRA, pendingAUT, ckaidPRA, ckaidAUT);
    zv::trace(title, "Loop sulle chiavi pubbliche: fine");
    if (tables.certificates.empty()) return 0;
    const auto wanted = [](const int* pending) { return pending == nullptr || *pending == 0; };
    if (zv::anyCertificate(tables, marksSignature) && wanted(pendingPRA) &&
        !zv::proposeFree(tables.publicKeys, zv::SIGNATURE_SERIES, ckaidPRA))
        return zv::SERIES_FULL;
    if (zv::anyCertificate(tables, [](std::string_view id) { return !marksSignature(id); }) &&
        wanted(pendingAUT) && !zv::proposeFree(tables.publicKeys, zv::AUTHENTICATION_SERIES, ckaidAUT))
        return zv::SERIES_FULL;
    zv::trace(title, "return 0 (OK)");
    return 0;
}
