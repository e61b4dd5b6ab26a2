// The request of a services card, for the pair that it was made with.
#include "card/session.h"
#include "diag/failure.h"
#include "diag/report.h"
#include "inventory/identifiers.h"
#include "request/request.h"
#include "store/marker.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "store/walk.h"
#include "util/text.h"

namespace zv {

namespace {

constexpr std::size_t MODULUS_ROOM = 1024, EXPONENT_ROOM = 17, MODULUS_CHECKED = 128;

// When no key is found the handle keeps its value, and reading it decides.
unsigned short find_own_key(PublicKey& key) {
    const CK_OBJECT_CLASS private_key = CKO_PRIVATE_KEY;
    copy_text(key.id, OWN_PAIR);
    CK_ATTRIBUTE tmpl[] = {attribute_of(CKA_CLASS, private_key), attribute(CKA_ID, OWN_PAIR)};
    const auto take = [](CK_OBJECT_HANDLE object) { hPrivateKey = object; };
    // Left open for read_own_key.
    const Walked walked =
        walk({.session = hSession, .tmpl = tmpl, .most = FIRST_OBJECT, .exits = {.at_end = Exit::left_open}},
             take);
    if (walked.whole()) return 0;
    return Failure(REQUEST_TITLE)
        .user("Errore nella lettura della chiave " ZV_OWN_PAIR " sulla smartcard (error %lx)", walked.code);
}

// Reads the key inside the search that found it, which is closed on every way out.
unsigned short read_own_key(PublicKey& key) {
    const Failure failure(REQUEST_TITLE);
    const CK_RV result = key.read(hPrivateKey, MODULUS_ROOM, EXPONENT_ROOM);
    const bool blank = result == CKR_OK && key.is_blank(MODULUS_CHECKED);
    if (blank) failure.step("ErrAttributeValue", CKR_OK);
    const CK_RV ended = end_search({hSession});
    if (result != CKR_OK) return failure.user(KEY_READ_ERROR, result);
    if (!blank && ended == CKR_OK) return 0;
    if (!blank) failure.step("ErrAttributeValue", ended);
    return failure.sentence(REPEAT_GENERATION).user(REPEAT_GENERATION);
}

} // namespace

unsigned short request_for_own_pair(const LoginData& login, char* pem_out) {
    trace(REQUEST_TITLE, "I N I Z I O");
    PublicKey key;
    unsigned short status = find_own_key(key);
    if (status == 0) status = read_own_key(key);
    if (status == 0) status = complete_request(key, SUBJECT_TABLE_CNS, login, pem_out);
    if (status != 0) return status;
    write_data(hSession, {ZV_PENDING_MARKER, "1", false, true});
    trace(REQUEST_TITLE, "F I N E");
    return 0;
}

} // namespace zv
