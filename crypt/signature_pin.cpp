#include "signature_pin.h"

#include <atomic>

namespace zvcrypt {
namespace {

// Of whatever card: nothing tells a session which of its keys have a PIN of their own.
std::atomic<bool> wasRefused = false;

[[noreturn]] void failUnsent(const char* reason) {
    throw Failure(ZVC_ERR_PIN_UNSENT,
                  std::string("La chiave richiede il PIN a ogni firma e non è stato inviato: ") + reason);
}

bool isRefusal(CK_RV result) {
    return result == CKR_PIN_INCORRECT || result == CKR_PIN_INVALID || result == CKR_PIN_LEN_RANGE ||
           result == CKR_PIN_EXPIRED || result == CKR_PIN_LOCKED;
}

// The key wants nothing more, or its module knows no such login.
bool needsNone(CK_RV result) {
    return result == CKR_USER_ALREADY_LOGGED_IN || result == CKR_USER_TYPE_INVALID;
}

} // namespace

bool asksForPin(const Session& session, CK_OBJECT_HANDLE key) {
    CK_BBOOL always = CK_FALSE;
    CK_ATTRIBUTE attribute{CKA_ALWAYS_AUTHENTICATE, &always, sizeof always};
    return session.call(&CK_FUNCTION_LIST::C_GetAttributeValue, key, &attribute, CK_ULONG{1}) == CKR_OK &&
           attribute.ulValueLen == sizeof always && always == CK_TRUE;
}

void requireSignaturePin(const Session& session) {
    if (wasRefused) failUnsent("in questo processo è già stato rifiutato");
    if (session.keptPin().empty()) failUnsent("la sessione non lo conserva");
    if ((session.tokenInfo().flags & (CKF_USER_PIN_FINAL_TRY | CKF_USER_PIN_LOCKED)) != 0)
        failUnsent("resta un solo tentativo prima del blocco, o nessuno");
}

void giveSignaturePin(const Session& session) {
    const CK_RV result = session.callLogin(CKU_CONTEXT_SPECIFIC, session.keptPin());
    if (result == CKR_OK || needsNone(result)) return;
    // Whatever else it was may have cost a try as well.
    if (moduleFailure("C_Login", result).code() != ZVC_ERR_CARD_REMOVED) wasRefused = true;
    if (!isRefusal(result)) throw moduleFailure("C_Login", result);
    throw Failure(ZVC_ERR_KEY_PIN,
                  moduleReason("PIN di firma rifiutato: può essere diverso dal PIN della smart card",
                               "C_Login", result) +
                      session.triesWarning());
}

} // namespace zvcrypt
