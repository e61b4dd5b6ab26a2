// CheckPendingKeys: finds the key pair that an unfinished request left on the card.
#include <cstring>

#include "card/session.h"
#include "diag/log.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "store/walk.h"
#include "util/text.h"

namespace {

constexpr char PENDING_TITLE[] = " .... CheckPendingKeys FUN           .... ";

zv::Visit unreadable(const char* format) {
    zv::reportFailure(PENDING_TITLE, "C_GetAttributeValue", zv::rv, format);
    return zv::Visit::GiveUp;
}

void reportNoKey() {
    zv::reportSentence("Non esiste alcuna chiave privata da certificare sulla smartcard (%s)", zv::rv);
}

// Takes the object's handle when its identifier, which is read into id, contains the pending one.
zv::Visit takeIfPending(CK_OBJECT_HANDLE object, CK_OBJECT_HANDLE& pending, char (&id)[256],
                        const char* readError) {
    if (zv::readText(zv::hSession, object, CKA_ID, id) != CKR_OK) return unreadable(readError);
    WriteLog(PENDING_TITLE, CatSZtoSZ("Label = ", zv::pendingLabel), 0, id, 0);
    if (std::strstr(id, zv::pendingLabel) != nullptr) pending = object;
    return zv::Visit::GoOn;
}

zv::Visit examine(CK_OBJECT_HANDLE object) {
    CK_OBJECT_CLASS objectClass = 0;
    if (zv::readNumber(zv::hSession, object, CKA_CLASS, objectClass) != CKR_OK)
        return unreadable("Errore nella lettura tipologia oggetto sulla smartcard (%s)");
    char id[256];
    if (objectClass == CKO_PUBLIC_KEY)
        return takeIfPending(object, zv::hPublicKey, id,
                             "Errore lettura CKA_ID chiave pubblica sulla smartcard (%s)");
    if (objectClass != CKO_PRIVATE_KEY) return zv::Visit::GoOn;
    const zv::Visit said = takeIfPending(object, zv::hPrivateKey, id,
                                         "Errore lettura CKA_ID chiave privata sulla smartcard (%s)");
    if (zv::hPrivateKey == object) zv::copyText(zv::privateKeyId, id);
    return said;
}

void traceStep(const zv::SearchCall& call) {
    switch (call.step) {
    case zv::SearchStep::Start:
        return zv::traceSession(PENDING_TITLE, call.name, call.session);
    case zv::SearchStep::Next:
        return zv::trace(PENDING_TITLE, call.name, CatItoA("Volta = ", call.round));
    case zv::SearchStep::End:
        return zv::trace(PENDING_TITLE, call.name);
    }
}

void reportStep(const zv::SearchCall& call) {
    if (call.result != CKR_OK)
        return zv::reportFailure(PENDING_TITLE, call.name, call.result, zv::SEARCH_ERROR);
    if (call.step == zv::SearchStep::Next) zv::traceFound(PENDING_TITLE, call.object, call.found);
}

} // namespace

int CheckPendingKeys(void*, bool reportMissing) {
    zv::hPrivateKey = 0;
    zv::hPublicKey = 0;
    zv::trace(PENDING_TITLE, "I N I Z I O");
    const zv::Walked walked = zv::walk({.session = zv::hSession,
                                        .log = {traceStep, reportStep},
                                        .exits = {.whenFindFails = zv::Exit::LeftOpen}},
                                       examine);
    if (!walked.whole()) return ZV_FAILED;
    // The private key alone decides.
    const bool found = zv::hPrivateKey != 0;
    zv::trace(PENDING_TITLE, "C_FindObjectsFinal", CatItoA("pendingKeys = ", found ? 1 : 0));
    zv::trace(PENDING_TITLE, found ? "F I N E" : "Chiave Pending Non trovata");
    if (found) return 0;
    if (reportMissing) reportNoKey();
    return zv::NO_PENDING_KEY;
}

int zv::checkSameKey() {
    char wanted[sizeof privateKeyId];
    copyText(wanted, privateKeyId);
    const int result = CheckPendingKeys(nullptr, true);
    if (result != 0 || std::strcmp(privateKeyId, wanted) == 0) return result;
    reportNoKey();
    return NO_PENDING_KEY;
}
