// RequestCertificateCNS: the request of a services card, for the pair that it was made with.
#include "card/session.h"
#include "diag/failure.h"
#include "diag/log.h"
#include "inventory/identifiers.h"
#include "request/pkcs10.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "store/walk.h"
#include "util/guarded.h"
#include "util/text.h"

namespace {

constexpr std::size_t MODULUS_ROOM = 1024, EXPONENT_ROOM = 17, MODULUS_CHECKED = 128;

// When no key is found the handle keeps its value, and reading it decides.
unsigned short findOwnKey() {
    const CK_OBJECT_CLASS privateKey = CKO_PRIVATE_KEY;
    zv::copyText(zv::privateKeyId, zv::OWN_PAIR);
    CK_ATTRIBUTE tmpl[] = {zv::attributeOf(CKA_CLASS, privateKey), zv::attribute(CKA_ID, zv::OWN_PAIR)};
    const auto take = [](CK_OBJECT_HANDLE key) { zv::hPrivateKey = key; };
    // Left open for readOwnKey.
    const zv::Walked walked = zv::walk({.session = zv::hSession,
                                        .tmpl = tmpl,
                                        .most = zv::FIRST_OBJECT,
                                        .exits = {.atEnd = zv::Exit::LeftOpen}},
                                       take);
    if (walked.whole()) return 0;
    return zv::Failure(zv::REQUEST_TITLE)
        .user("Errore nella lettura della chiave CNS0 sulla smartcard (error %lx)", walked.code);
}

// Reads the key inside the search that found it, which is closed on every way out.
unsigned short readOwnKey(zv::PublicKey& key) {
    const zv::Failure failure(zv::REQUEST_TITLE);
    const CK_RV result = key.read(zv::hPrivateKey, MODULUS_ROOM, EXPONENT_ROOM);
    const bool blank = result == CKR_OK && key.isBlank(MODULUS_CHECKED);
    if (blank) failure.step("ErrAttributeValue", CKR_OK);
    const CK_RV ended = zv::endSearch({zv::hSession});
    if (result != CKR_OK) return failure.user(zv::KEY_READ_ERROR, result);
    if (!blank && ended == CKR_OK) return 0;
    if (!blank) failure.step("ErrAttributeValue", ended);
    return failure.sentence(zv::REPEAT_GENERATION).user(zv::REPEAT_GENERATION);
}

unsigned short buildOwnRequest(const zv::LoginData& login, char* pemOut) {
    zv::PublicKey key;
    unsigned short status = findOwnKey();
    if (status == 0) status = readOwnKey(key);
    return status == 0 ? zv::completeRequest(key, zv::SUBJECT_TABLE_CNS, login, pemOut) : status;
}

} // namespace

unsigned short RequestCertificateCNS(void*, char* pemOut, char* pin, unsigned short, char* modulePath,
                                     char*) {
    zv::trace(zv::REQUEST_TITLE, "I N I Z I O");
    const unsigned short status = zv::guarded<unsigned short>(ZV_FAILED, [&] {
        return buildOwnRequest({modulePath, pin}, pemOut);
    });
    if (status != 0) return status;
    zv::rv = DataStore(zv::hSession, "pending_CNS_key", "1", "", false, true);
    zv::trace(zv::REQUEST_TITLE, "F I N E");
    return 0;
}
