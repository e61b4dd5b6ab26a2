// RequestCertificate: the request of a card that is not a services card, for its pending pair.
#include "diag/failure.h"
#include "diag/log.h"
#include "request/key_pair.h"
#include "store/pending_pair.h"
#include "store/renewal_state.h"
#include "util/guarded.h"
#include "util/text.h"

namespace {

unsigned short prepare_pair(const zv::LoginData& login, zv::PublicKey& key) {
    const zv::PendingPair pending = zv::find_pending_pair(false);
    const bool generate = pending.search == zv::PairSearch::no_private_key;
    zv::copy_text(key.id, generate ? zv::pendingLabel : pending.id);
    if (pending.search == zv::PairSearch::found) return 0;
    if (generate) return zv::generate_key_pair(login);
    // The code is always shown as 0.
    return zv::Failure(zv::REQUEST_TITLE)
        .step("CheckPendingKeys", CKR_OK)
        .user("Errore nella ricerca delle chiavi pending generate sulla smartcard (error %lx)", CKR_OK)
        .sentence(szSockMsg);
}

unsigned short read_back(zv::PublicKey& key) {
    const CK_RV result = key.read(zv::hPrivateKey, zv::PublicKey::MODULUS_SIZE, zv::PublicKey::EXPONENT_SIZE);
    if (result != CKR_OK) return zv::Failure(zv::REQUEST_TITLE).user(zv::KEY_READ_ERROR, result);
    if (!key.is_blank(zv::keySize / 8)) return 0;
    return zv::Failure(zv::REQUEST_TITLE)
        .step("ErrAttributeValue", CKR_OK)
        .sentence(zv::REPEAT_GENERATION)
        .user(zv::REPEAT_GENERATION);
}

unsigned short build_request(const zv::LoginData& login, char* pem_out) {
    zv::PublicKey key;
    unsigned short status = prepare_pair(login, key);
    if (status == 0) status = read_back(key);
    return status == 0 ? zv::complete_request(key, zv::SUBJECT_TABLE, login, pem_out) : status;
}

} // namespace

unsigned short RequestCertificate(void*, char* pem_out, char* pin, unsigned short, char* module_path, char*) {
    zv::keySize = 2048;
    zv::trace(zv::REQUEST_TITLE, "I N I Z I O");
    char none[] = "";
    const zv::LoginData login = {module_path != nullptr ? module_path : none, pin};
    const unsigned short status =
        zv::guarded<unsigned short>(ZV_FAILED, [&] { return build_request(login, pem_out); });
    if (status == 0) zv::trace(zv::REQUEST_TITLE, "F I N E");
    return status;
}
