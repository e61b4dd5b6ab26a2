// RichiestaCertificato: the one way into the request machinery.
#include "card/session.h"
#include "diag/log.h"
#include "inventory/census.h"
#include "store/objects.h"
#include "store/pending_deletion.h"
#include "store/renewal_state.h"
#include "store/traced.h"
#include "util/text.h"

#include <cstring>

namespace zv {

// A control value that is only ever logged.
unsigned short tocontrol = 0;

} // namespace zv

namespace {

constexpr char DISPATCH_TITLE[] = " .... RichiestaCertificato FUN       .... ";
zv::Census log_census() {
    char text[zv::CENSUS_SIZE] = {};
    const zv::Census census = zv::take_census(text);
    const int code = static_cast<int>(census);
    zv::trace(DISPATCH_TITLE, CatItoAHex1("Codice FindObjects: ", code), code >= 2 ? text : "");
    return census;
}

// A pending pair has no certificate: what has one is in use.
const char* why_in_use() {
    const CK_OBJECT_CLASS certificate = CKO_CERTIFICATE;
    CK_ATTRIBUTE tmpl[] = {zv::attribute_of(CKA_CLASS, certificate), zv::attribute(CKA_ID, zv::pendingLabel)};
    const zv::Found found = zv::find_one(zv::hSession, tmpl);
    if (found.none) return nullptr;
    return found.code == CKR_OK ? "la coppia di chiavi da scartare ha un certificato"
                                : "la ricerca del certificato della coppia di chiavi da scartare e' fallita";
}

// Asked in front of a deletion, which cannot be taken back.
bool may_discard(unsigned slot_index) {
    const char* reason = why_in_use();
    if (reason == nullptr && !zv::login_stays(slot_index)) reason = zv::OTHER_SLOT;
    if (reason != nullptr) zv::report_not_sent(reason);
    return reason == nullptr;
}

void discard_pending(char* module_path, char* pin) {
    const auto slot_index = static_cast<unsigned>(zv::slotUtente);
    if (may_discard(slot_index) && zv::delete_pending_pair(module_path, pin, slot_index)) return;
    zv::report_code(DISPATCH_TITLE, "Cancellazione Oggetti", ZV_FAILED);
    finalizza();
}

// Whatever becomes of it, the request goes on; without a session the builder fails and says so.
void act_on_census(zv::Census census, char* module_path, char* pin) {
    if (census == zv::Census::failed) {
        finalizza();
        zv::report_code(DISPATCH_TITLE, "FindObjects", ZV_FAILED);
    } else if (zv::has_pending_key(census) && zv::cKeepKeys == 'D') {
        discard_pending(module_path, pin);
    }
}

} // namespace

unsigned short RichiestaCertificato(char* pem_out, char* module_path, char* pin, char* card_type) {
    zv::trace(DISPATCH_TITLE, "I N I Z I O", CatItoA("tocontrol = ", zv::tocontrol));
    if (zv::hSession == 0) return 0;
    act_on_census(log_census(), module_path, pin);
    zv::trace(DISPATCH_TITLE, "Prima di RequestCertificate");
    const auto build =
        std::strcmp(zv::or_empty(card_type), "CNS") == 0 ? RequestCertificateCNS : RequestCertificate;
    const unsigned short status = build(nullptr, pem_out, pin, 0, module_path, nullptr);
    zv::trace(DISPATCH_TITLE, CatItoAHex1("Ret Code = ", status), pem_out);
    finalizza();
    zv::trace(DISPATCH_TITLE, "F I N E");
    return status;
}
