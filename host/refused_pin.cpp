#include "host/refused_pin.h"

#include "zvCrypt.h"

namespace zvhost {
namespace {

// A result of the library is PKCS#11's, or the crypto library's.
bool says_refused(int code) {
    for (const int refusal :
         {ZVC_ERR_PIN_INCORRECT, ZVC_ERR_PIN_FORM, ZVC_ERR_PIN_EXPIRED, ZVC_ERR_PIN_LOCKED})
        if (code == refusal) return true;
    return refuses_pin(static_cast<CK_RV>(code));
}

} // namespace

bool refuses_pin(CK_RV result) {
    for (const CK_RV refusal :
         {CKR_PIN_INCORRECT, CKR_PIN_INVALID, CKR_PIN_LEN_RANGE, CKR_PIN_EXPIRED, CKR_PIN_LOCKED})
        if (result == refusal) return true;
    return false;
}

Advice check_pin() {
    return {"check-pin", Sentence("check-pin", {})};
}

Error with_pin(Pin& pin, Error error) {
    if (!error.code || !says_refused(*error.code)) return error;
    pin.refuse();
    error.advice = {check_pin()};
    return error;
}

} // namespace zvhost
