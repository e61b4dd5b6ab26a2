// RequestCertificateCNS: the request of a services card, for the pair that it was made with.
#include "card/session.h"
#include "diag/failure.h"
#include "diag/log.h"
#include "inventory/identifiers.h"
#include "request/pkcs10.h"
#include "store/marker.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "store/walk.h"
#include "util/guarded.h"
#include "util/text.h"

namespace {

constexpr std::size_t MODULUS_ROOM = 1024, EXPONENT_ROOM = 17, MODULUS_CHECKED = 128;

// When no key is found the handle keeps its value, and reading it decides.
unsigned short find_own_key(zv::PublicKey& key) {
    const CK_OBJECT_CLASS private_key = CKO_PRIVATE_KEY;
    zv::copy_text(key.id, zv::OWN_PAIR);
    CK_ATTRIBUTE tmpl[] = {zv::attribute_of(CKA_CLASS, private_key), zv::attribute(CKA_ID, zv::OWN_PAIR)};
    const auto take = [](CK_OBJECT_HANDLE object) { zv::hPrivateKey = object; };
    // Left open for read_own_key.
    const zv::Walked walked = zv::walk({.session = zv::hSession,
                                        .tmpl = tmpl,
                                        .most = zv::FIRST_OBJECT,
                                        .exits = {.at_end = zv::Exit::left_open}},
                                       take);
    if (walked.whole()) return 0;
    return zv::Failure(zv::REQUEST_TITLE)
        .user("Errore nella lettura della chiave CNS0 sulla smartcard (error %lx)", walked.code);
}

// Reads the key inside the search that found it, which is closed on every way out.
unsigned short read_own_key(zv::PublicKey& key) {
    const zv::Failure failure(zv::REQUEST_TITLE);
    const CK_RV result = key.read(zv::hPrivateKey, MODULUS_ROOM, EXPONENT_ROOM);
    const bool blank = result == CKR_OK && key.is_blank(MODULUS_CHECKED);
    if (blank) failure.step("ErrAttributeValue", CKR_OK);
    const CK_RV ended = zv::end_search({zv::hSession});
    if (result != CKR_OK) return failure.user(zv::KEY_READ_ERROR, result);
    if (!blank && ended == CKR_OK) return 0;
    if (!blank) failure.step("ErrAttributeValue", ended);
    return failure.sentence(zv::REPEAT_GENERATION).user(zv::REPEAT_GENERATION);
}

unsigned short build_own_request(const zv::LoginData& login, char* pem_out) {
    zv::PublicKey key;
    unsigned short status = find_own_key(key);
    if (status == 0) status = read_own_key(key);
    return status == 0 ? zv::complete_request(key, zv::SUBJECT_TABLE_CNS, login, pem_out) : status;
}

} // namespace

unsigned short RequestCertificateCNS(void*, char* pem_out, char* pin, unsigned short, char* module_path,
                                     char*) {
    zv::trace(zv::REQUEST_TITLE, "I N I Z I O");
    const unsigned short status = zv::guarded<unsigned short>(ZV_FAILED, [&] {
        return build_own_request({module_path, pin}, pem_out);
    });
    if (status != 0) return status;
    zv::write_data(zv::hSession, {"pending_CNS_key", "1", false, true});
    zv::trace(zv::REQUEST_TITLE, "F I N E");
    return 0;
}
