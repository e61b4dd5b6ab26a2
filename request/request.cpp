// RequestCertificate: the request of a card that is not a services card, for its pending pair.
#include "diag/failure.h"
#include "diag/log.h"
#include "request/key_pair.h"
#include "store/renewal_state.h"
#include "util/guarded.h"

namespace {

unsigned short preparePair(const zv::LoginData& login) {
    const int pending = CheckPendingKeys(nullptr, false);
    if (pending == 0) return 0;
    if (pending == zv::NO_PENDING_KEY) return zv::generateKeyPair(login);
    // The code is always shown as 0.
    return zv::Failure(zv::REQUEST_TITLE)
        .step("CheckPendingKeys", CKR_OK)
        .user("Errore nella ricerca delle chiavi pending generate sulla smartcard (error %lx)", CKR_OK)
        .sentence(szSockMsg);
}

unsigned short readBack(zv::PublicKey& key) {
    const CK_RV result = key.read(zv::hPrivateKey, zv::PublicKey::MODULUS_SIZE, zv::PublicKey::EXPONENT_SIZE);
    if (result != CKR_OK) return zv::Failure(zv::REQUEST_TITLE).user(zv::KEY_READ_ERROR, result);
    if (!key.isBlank(zv::keySize / 8)) return 0;
    return zv::Failure(zv::REQUEST_TITLE)
        .step("ErrAttributeValue", CKR_OK)
        .sentence(zv::REPEAT_GENERATION)
        .user(zv::REPEAT_GENERATION);
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
        zv::guarded<unsigned short>(ZV_FAILED, [&] { return buildRequest(login, pemOut); });
    if (status == 0) zv::trace(zv::REQUEST_TITLE, "F I N E");
    return status;
}
