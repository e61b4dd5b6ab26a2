// RequestCertificate: the request of a card that is not a services card, for its pending pair.
#include "diag/log.h"
#include "request/key_pair.h"
#include "store/renewal_state.h"
#include "util/guarded.h"

namespace {

constexpr int NO_PENDING_KEY = 100;

unsigned short failSearch() {
    // The code is always shown as 0.
    zv::reportCode(zv::REQUEST_TITLE, "CheckPendingKeys", 0);
    zv::failRequest("Errore nella ricerca delle chiavi pending generate sulla smartcard (error %lx)", 0);
    zv::reportSentence(szSockMsg);
    return zv::REQUEST_FAILED;
}

unsigned short preparePair(const zv::LoginData& login) {
    const int pending = CheckPendingKeys(nullptr, false);
    if (pending == 0) return 0;
    return pending == NO_PENDING_KEY ? zv::generateKeyPair(login) : failSearch();
}

unsigned short readBack(zv::PublicKey& key) {
    const CK_RV result = key.read(zv::hPrivateKey, zv::PublicKey::MODULUS_SIZE, zv::PublicKey::EXPONENT_SIZE);
    if (result != CKR_OK) return zv::failRequest(zv::KEY_READ_ERROR, result);
    if (!key.isBlank(zv::keySize / 8)) return 0;
    zv::reportCode(zv::REQUEST_TITLE, "ErrAttributeValue", 0);
    return zv::failGeneration();
}

unsigned short buildRequest(const zv::LoginData& login, char* pemOut) {
    zv::PublicKey key;
    unsigned short status = preparePair(login);
    if (status == 0) status = readBack(key);
    return status == 0 ? zv::completeRequest(key, zv::SUBJECT_TABLE, login, pemOut) : status;
}

} // namespace

unsigned short RequestCertificate(void*, char* pemOut, char* pin, unsigned short, char* modulePath, char*) {
    zv::keySize = 2048;
    zv::trace(zv::REQUEST_TITLE, "I N I Z I O");
    char none[] = "";
    const zv::LoginData login = {modulePath != nullptr ? modulePath : none, pin};
    const unsigned short status =
        zv::guarded(zv::REQUEST_FAILED, [&] { return buildRequest(login, pemOut); });
    if (status == 0) zv::trace(zv::REQUEST_TITLE, "F I N E");
    return status;
}
