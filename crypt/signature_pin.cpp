#include "crypt/signature_pin.h"

#include <atomic>

namespace zvcrypt {
namespace {

// Of whatever card: nothing tells a session which of its keys have a PIN of their own.
std::atomic<bool> was_refused = false;

[[noreturn]] void fail_unsent(const char* reason) {
    throw Failure(ZVC_ERR_PIN_UNSENT,
                  std::string("La chiave richiede il PIN a ogni firma e non è stato inviato: ") + reason);
}

bool is_refusal(CK_RV result) {
    return result == CKR_PIN_INCORRECT || result == CKR_PIN_INVALID || result == CKR_PIN_LEN_RANGE ||
           result == CKR_PIN_EXPIRED || result == CKR_PIN_LOCKED;
}

// The key wants nothing more, or its module knows no such login.
bool needs_none(CK_RV result) {
    return result == CKR_USER_ALREADY_LOGGED_IN || result == CKR_USER_TYPE_INVALID;
}

} // namespace

bool asks_for_pin(const Session& session, CK_OBJECT_HANDLE key) {
    CK_BBOOL always = CK_FALSE;
    CK_ATTRIBUTE attribute{CKA_ALWAYS_AUTHENTICATE, &always, sizeof always};
    return session.call(&CK_FUNCTION_LIST::C_GetAttributeValue, key, &attribute, CK_ULONG{1}) == CKR_OK &&
           attribute.ulValueLen == sizeof always && always == CK_TRUE;
}

void require_signature_pin(const Session& session) {
    if (was_refused) fail_unsent("in questo processo è già stato rifiutato");
    if (session.kept_pin().empty()) fail_unsent("la sessione non lo conserva");
    if ((session.token_info().flags & (CKF_USER_PIN_FINAL_TRY | CKF_USER_PIN_LOCKED)) != 0)
        fail_unsent("resta un solo tentativo prima del blocco, o nessuno");
}

void give_signature_pin(const Session& session) {
    const CK_RV result = session.call_login(CKU_CONTEXT_SPECIFIC, session.kept_pin());
    if (result == CKR_OK || needs_none(result)) return;
    // Whatever else it was may have cost a try as well.
    if (module_failure("C_Login", result).code() != ZVC_ERR_CARD_REMOVED) was_refused = true;
    if (!is_refusal(result)) throw module_failure("C_Login", result);
    throw Failure(ZVC_ERR_KEY_PIN,
                  module_reason("PIN di firma rifiutato: può essere diverso dal PIN della smart card",
                                "C_Login", result) +
                      session.tries_warning());
}

} // namespace zvcrypt
