// RichiestaCertificato: the one way into the request machinery.
#include <cstring>

#include "card/session.h"
#include "diag/log.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "store/traced.h"
#include "util/text.h"

namespace zv {

// A control value that is only ever logged.
unsigned short tocontrol = 0;

} // namespace zv

namespace {

constexpr char DISPATCH_TITLE[] = " .... RichiestaCertificato FUN       .... ";
constexpr std::size_t CENSUS_SIZE = 1536;
constexpr int PENDING_AND_FEW = 3, PENDING_AND_MORE = 4;

int takeCensus() {
    char census[CENSUS_SIZE] = {};
    const int code = FindAllObjects(zv::hSession, census);
    zv::trace(DISPATCH_TITLE, CatItoAHex1("Codice FindObjects: ", code), code >= 2 ? census : "");
    return code;
}

// A waiting pair has no certificate: what has one is in use.
const char* whyInUse() {
    const CK_OBJECT_CLASS certificate = CKO_CERTIFICATE;
    CK_ATTRIBUTE tmpl[] = {zv::attributeOf(CKA_CLASS, certificate), zv::attribute(CKA_ID, zv::pendingLabel)};
    CK_OBJECT_HANDLE object = 0;
    bool none = false;
    const bool found = zv::findOne(zv::hSession, tmpl, object, none) == CKR_OK;
    if (none) return nullptr;
    return found ? "la coppia di chiavi da scartare ha un certificato"
                 : "la ricerca del certificato della coppia di chiavi da scartare e' fallita";
}

// Asked in front of a deletion, which cannot be taken back.
bool mayDiscard(unsigned slotIndex) {
    const char* reason = whyInUse();
    if (reason == nullptr && !zv::loginStays(slotIndex)) reason = zv::OTHER_SLOT;
    if (reason != nullptr) zv::reportNotSent(reason);
    return reason == nullptr;
}

void discardPending(char* modulePath, char* pin) {
    const auto slotIndex = static_cast<unsigned>(zv::slotUtente);
    const int result =
        mayDiscard(slotIndex) ? DeleteAllPending32(modulePath, pin, slotIndex, nullptr) : ZV_FAILED;
    if (result == 0) return;
    zv::reportCode(DISPATCH_TITLE, "Cancellazione Oggetti", static_cast<CK_RV>(result));
    finalizza();
}

// Whatever becomes of it, the request goes on; without a session the builder fails and says so.
void actOnCensus(int code, char* modulePath, char* pin) {
    if (code == ZV_FAILED) {
        finalizza();
        zv::reportCode(DISPATCH_TITLE, "FindObjects", static_cast<CK_RV>(code));
    } else if ((code == PENDING_AND_FEW || code == PENDING_AND_MORE) && zv::cKeepKeys == 'D') {
        discardPending(modulePath, pin);
    }
}

} // namespace

unsigned short RichiestaCertificato(char* pemOut, char* modulePath, char* pin, char* cardType) {
    zv::trace(DISPATCH_TITLE, "I N I Z I O", CatItoA("tocontrol = ", zv::tocontrol));
    if (zv::hSession == 0) return 0;
    actOnCensus(takeCensus(), modulePath, pin);
    zv::trace(DISPATCH_TITLE, "Prima di RequestCertificate");
    const auto build =
        std::strcmp(zv::orEmpty(cardType), "CNS") == 0 ? RequestCertificateCNS : RequestCertificate;
    const unsigned short status = build(nullptr, pemOut, pin, 0, modulePath, nullptr);
    zv::trace(DISPATCH_TITLE, CatItoAHex1("Ret Code = ", status), pemOut);
    finalizza();
    zv::trace(DISPATCH_TITLE, "F I N E");
    return status;
}
