#include "crypt/card_signature.h"

#include "crypt/signature_pin.h"

namespace zvcrypt {
namespace {

constexpr std::size_t ROOM_FOR_SIGNATURE = 1024;

// The card has the key, but it is no RSA key, or not one for signatures.
bool refuses_key(CK_RV result) {
    return result == CKR_KEY_TYPE_INCONSISTENT || result == CKR_KEY_FUNCTION_NOT_PERMITTED ||
           result == CKR_KEY_SIZE_RANGE || result == CKR_MECHANISM_INVALID;
}

} // namespace

Bytes sign_on_card(const Session& session, CK_OBJECT_HANDLE key, const Bytes& digest_info) {
    const bool asks = asks_for_pin(session, key);
    if (asks) require_signature_pin(session);
    CK_MECHANISM mechanism{CKM_RSA_PKCS, nullptr, 0};
    const CK_RV begun = session.call(&CK_FUNCTION_LIST::C_SignInit, &mechanism, key);
    if (refuses_key(begun))
        throw Failure(ZVC_ERR_KEY, module_reason("La chiave non può fare questa firma", "C_SignInit", begun));
    check("C_SignInit", begun);
    if (asks) give_signature_pin(session);
    Bytes data = digest_info;
    Bytes signature(ROOM_FOR_SIGNATURE);
    CK_ULONG length = static_cast<CK_ULONG>(signature.size());
    check("C_Sign", session.call(&CK_FUNCTION_LIST::C_Sign, data.data(), static_cast<CK_ULONG>(data.size()),
                                 signature.data(), &length));
    if (length > signature.size())
        throw Failure(ZVC_ERR_MODULE_ANSWER, "Il modulo PKCS#11 ha dato una firma di lunghezza impossibile");
    signature.resize(length);
    return signature;
}

} // namespace zvcrypt
