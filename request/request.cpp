// The request of a card that is not a services card, for its pending pair.
#include "request/request.h"

#include "diag/failure.h"
#include "diag/report.h"
#include "request/key_pair.h"
#include "store/pending_pair.h"
#include "store/renewal_state.h"
#include "util/text.h"
#include "zvRenew.h"

namespace zv {

namespace {

unsigned short prepare_pair(const LoginData& login, PublicKey& key) {
    const PendingPair pending = find_pending_pair(false);
    const bool generate = pending.search == PairSearch::no_private_key;
    copy_text(key.id, generate ? pendingLabel : pending.id);
    if (pending.search == PairSearch::found) return 0;
    if (generate) return generate_key_pair(login);
    // The code is always shown as 0.
    return Failure(REQUEST_TITLE)
        .step("CheckPendingKeys", CKR_OK)
        .user("Errore nella ricerca delle chiavi pending generate sulla smartcard (error %lx)", CKR_OK)
        .sentence(szSockMsg);
}

unsigned short read_back(PublicKey& key) {
    const CK_RV result = key.read(hPrivateKey, PublicKey::MODULUS_SIZE, PublicKey::EXPONENT_SIZE);
    if (result != CKR_OK) return Failure(REQUEST_TITLE).user(KEY_READ_ERROR, result);
    if (!key.is_blank(keySize / 8)) return 0;
    return Failure(REQUEST_TITLE)
        .step("ErrAttributeValue", CKR_OK)
        .sentence(REPEAT_GENERATION)
        .user(REPEAT_GENERATION);
}

} // namespace

unsigned short request_for_pending_pair(const LoginData& login, char* pem_out) {
    keySize = ZV_KEY_BITS;
    trace(REQUEST_TITLE, "I N I Z I O");
    PublicKey key;
    unsigned short status = prepare_pair(login, key);
    if (status == 0) status = read_back(key);
    if (status == 0) status = complete_request(key, SUBJECT_TABLE, login, pem_out);
    if (status == 0) trace(REQUEST_TITLE, "F I N E");
    return status;
}

} // namespace zv
