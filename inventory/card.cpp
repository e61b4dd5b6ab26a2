// The inventory of a card that is not a services card.
#include "diag/report.h"
#include "inventory/inventory.h"
#include "store/renewal_state.h"
#include "util/guarded.h"
#include "util/numbers.h"
#include "util/text.h"

#include <cstring>

namespace zv {

namespace {

constexpr std::size_t AUTHORITY_LABEL_LENGTH = sizeof ZV_AUTHORITY_ID - 1;

void log_call(const char* name, CK_RV result) {
    if (result == CKR_OK) return trace(name, "OK");
    static constexpr struct {
        const char* call;
        const char* text;
    } failures[] = {{"C_GetSlotInfo", "Get Slot Info: "},
                    {"C_GetTokenInfo", "Get Token Info: "},
                    {"C_FindObjectsInit", "Find Objects Init: "},
                    {"C_FindObjects", "Find Objects: "},
                    {"C_FindObjectsFinal", "Find Objects Final: "}};
    for (const auto& [call, text] : failures)
        if (std::strcmp(call, name) == 0) trace(name, text, with_hex("Errore = ", static_cast<int>(result)));
}

constexpr SearchLog INVENTORY_LOG = {
    .after = [](const SearchCall& call) { log_call(call.name, call.result); }};

bool is_authority(const Certificate& certificate) {
    return std::strncmp(certificate.label, CAcertificateLabel, AUTHORITY_LABEL_LENGTH) == 0;
}

void add_certificate(Inventory& inventory, Certificate& certificate) {
    const CertificateFields fields(certificate, false);
    const std::string_view id = id_of(certificate.id);
    const Kind kind = kind_of_certificate(id, false);
    CertificateList& list = inventory.lists[kind];
    list.records.push_back(fields.record(kind, id));
    list.last.emplace(fields, certificate);
}

void add_certificates(Inventory& inventory, const FoundCertificates& found) {
    std::size_t listed = 0;
    for (Certificate* certificate : found)
        if (!is_authority(*certificate) && listed++ < MOST_CERTIFICATES)
            add_certificate(inventory, *certificate);
}

} // namespace

bool read_card(Inventory& inventory) {
    FoundCertificates found;
    if (!probe_token(log_call) || !found.read(INVENTORY_LOG, ALWAYS_ENDED)) return false;
    add_certificates(inventory, found);
    trace("Inizializzazione Buffers: inizio", "szCertPRAStore, szCertAUTStore");
    trace("Inizializzazione Buffers: fine", "");
    trace("Find_ALL_Pending", "Inizio");
    guarded([&] { (void)read_card_state(inventory.state); });
    trace("Find_ALL_Pending", "Fine");
    // Both marks hang on the signature certificates and their flag alone.
    const auto& pairs = inventory.state.pairs;
    if (!inventory.lists[Kind::signature].records.empty() && pairs[Kind::signature].pending == 1) {
        for (const Kind kind : {Kind::signature, Kind::authentication})
            inventory.lists[kind].mark = pairs[kind].id;
    }
    trace("NewFind_ALL_CertsKeysRenew: ", "return 0 (OK)");
    return true;
}

} // namespace zv
