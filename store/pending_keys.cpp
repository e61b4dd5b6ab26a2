// CheckPendingKeys: finds the key pair that an unfinished request left on the card.
#include <cstring>

#include "card/session.h"
#include "diag/log.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "util/text.h"

namespace {

constexpr char PENDING_TITLE[] = " .... CheckPendingKeys FUN           .... ";
constexpr int PENDING_FAILED = 1;
constexpr int NO_PENDING_KEY = 100;

int failRead(const char* format) {
    zv::reportFailure(PENDING_TITLE, "C_GetAttributeValue", zv::rv, format);
    return PENDING_FAILED;
}

void reportNoKey() {
    zv::reportSentence("Non esiste alcuna chiave privata da certificare sulla smartcard (%s)", zv::rv);
}

// Takes the object's handle when its identifier, which is read into id, contains the pending one.
int takeIfPending(CK_OBJECT_HANDLE object, CK_OBJECT_HANDLE& pending, char (&id)[256],
                  const char* readError) {
    if (zv::readText(zv::hSession, object, CKA_ID, id) != CKR_OK) return failRead(readError);
    WriteLog(PENDING_TITLE, CatSZtoSZ("Label = ", zv::pendingLabel), 0, id, 0);
    if (std::strstr(id, zv::pendingLabel) != nullptr) pending = object;
    return 0;
}

int examine(CK_OBJECT_HANDLE object) {
    CK_OBJECT_CLASS objectClass = 0;
    if (zv::readNumber(zv::hSession, object, CKA_CLASS, objectClass) != CKR_OK)
        return failRead("Errore nella lettura tipologia oggetto sulla smartcard (%s)");
    char id[256];
    if (objectClass == CKO_PUBLIC_KEY)
        return takeIfPending(object, zv::hPublicKey, id,
                             "Errore lettura CKA_ID chiave pubblica sulla smartcard (%s)");
    if (objectClass != CKO_PRIVATE_KEY) return 0;
    const int result = takeIfPending(object, zv::hPrivateKey, id,
                                     "Errore lettura CKA_ID chiave privata sulla smartcard (%s)");
    if (zv::hPrivateKey == object) zv::copyText(zv::privateKeyId, id);
    return result;
}

int examineAll() {
    zv::SearchGuard search(zv::hSession);
    CK_OBJECT_HANDLE object = 0;
    for (int round = 1;; ++round) {
        zv::trace(PENDING_TITLE, "C_FindObjects", CatItoA("Volta = ", round));
        CK_ULONG count = 0;
        if (zv::nextObject(zv::hSession, object, count) != CKR_OK) {
            zv::reportFailure(PENDING_TITLE, "C_FindObjects", zv::rv, zv::SEARCH_ERROR);
            search.dismiss();
            return PENDING_FAILED;
        }
        zv::traceFound(PENDING_TITLE, object, count);
        if (count != 1) break;
        if (examine(object) != 0) return PENDING_FAILED;
    }
    search.dismiss();
    zv::trace(PENDING_TITLE, "C_FindObjectsFinal");
    if (zv::endSearch(zv::hSession) == CKR_OK) return 0;
    zv::reportFailure(PENDING_TITLE, "C_FindObjectsFinal", zv::rv, zv::SEARCH_ERROR);
    return PENDING_FAILED;
}

} // namespace

int CheckPendingKeys(void*, bool reportMissing) {
    zv::hPrivateKey = 0;
    zv::hPublicKey = 0;
    zv::trace(PENDING_TITLE, "I N I Z I O");
    zv::traceSession(PENDING_TITLE, "C_FindObjectsInit", zv::hSession);
    if (zv::startSearch(zv::hSession) != CKR_OK) {
        zv::reportFailure(PENDING_TITLE, "C_FindObjectsInit", zv::rv, zv::SEARCH_ERROR);
        return PENDING_FAILED;
    }
    if (examineAll() != 0) return PENDING_FAILED;
    // The private key alone decides.
    const bool found = zv::hPrivateKey != 0;
    zv::trace(PENDING_TITLE, "C_FindObjectsFinal", CatItoA("pendingKeys = ", found ? 1 : 0));
    zv::trace(PENDING_TITLE, found ? "F I N E" : "Chiave Pending Non trovata");
    if (found) return 0;
    if (reportMissing) reportNoKey();
    return NO_PENDING_KEY;
}

int zv::checkSameKey() {
    char wanted[sizeof privateKeyId];
    copyText(wanted, privateKeyId);
    const int result = CheckPendingKeys(nullptr, true);
    if (result != 0 || std::strcmp(privateKeyId, wanted) == 0) return result;
    reportNoKey();
    return NO_PENDING_KEY;
}
