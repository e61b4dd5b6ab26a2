// The census, what it leads to, and the choice of the request.
#include "card/full_opener.h"
#include "card/session.h"
#include "diag/report.h"
#include "inventory/census.h"
#include "kinds.h"
#include "request/request.h"
#include "store/keep_flag.h"
#include "store/objects.h"
#include "store/pending_deletion.h"
#include "store/renewal_state.h"
#include "store/traced.h"
#include "util/guarded.h"
#include "util/numbers.h"
#include "zvRenew.h"

namespace zv {

// A control value that is only ever logged.
unsigned short tocontrol = 0;

namespace {

constexpr char DISPATCH_TITLE[] = " .... RichiestaCertificato FUN       .... ";

Census log_census() {
    char text[CENSUS_SIZE] = {};
    const Census census = take_census(text);
    trace(DISPATCH_TITLE, with_hex("Codice FindObjects: ", static_cast<int>(census)),
          census == Census::failed ? "" : text);
    return census;
}

// A pending pair has no certificate: what has one is in use.
const char* why_in_use() {
    const CK_OBJECT_CLASS certificate = CKO_CERTIFICATE;
    CK_ATTRIBUTE tmpl[] = {attribute_of(CKA_CLASS, certificate), attribute(CKA_ID, pendingLabel)};
    const Found found = find_one(hSession, tmpl);
    if (found.none) return nullptr;
    return found.code == CKR_OK ? "la coppia di chiavi da scartare ha un certificato"
                                : "la ricerca del certificato della coppia di chiavi da scartare e' fallita";
}

// Asked in front of a deletion, which cannot be taken back.
bool may_discard(unsigned slot_index, const LoginData& login) {
    const char* reason = why_in_use();
    if (reason == nullptr && !login_stays(slot_index, login)) reason = OTHER_SLOT;
    if (reason != nullptr) report_not_sent(reason);
    return reason == nullptr;
}

void discard_pending(const LoginData& login) {
    const auto slot_index = static_cast<unsigned>(slotUtente);
    if (may_discard(slot_index, login) && delete_pending_pair(slot_index, login)) return;
    report_code(DISPATCH_TITLE, "Cancellazione Oggetti", ZV_FAILED);
    close_card();
}

// Whatever becomes of it, the request goes on; without a session the builder fails and says so.
void act_on_census(Census census, const LoginData& login) {
    if (census == Census::failed) {
        close_card();
        report_code(DISPATCH_TITLE, "FindObjects", ZV_FAILED);
    } else if (has_pending_key(census) && cKeepKeys == *KEEP_NOTHING) {
        discard_pending(login);
    }
}

} // namespace

unsigned short request_certificate(const LoginData& login, std::string_view card_type, char* pem_out) {
    trace(DISPATCH_TITLE, "I N I Z I O", with_decimal("tocontrol = ", tocontrol));
    if (hSession == 0) return 0;
    act_on_census(log_census(), login);
    trace(DISPATCH_TITLE, "Prima di RequestCertificate");
    const auto build = is_for_own_pair(card_type) ? request_for_own_pair : request_for_pending_pair;
    const auto status = guarded<unsigned short>(ZV_FAILED, [&] { return build(login, pem_out); });
    trace(DISPATCH_TITLE, with_hex("Ret Code = ", status), pem_out);
    close_card();
    trace(DISPATCH_TITLE, "F I N E");
    return status;
}

} // namespace zv
