#include "simcard/module/side_session.h"

#include "simcard/module/key_parts.h"

namespace simcard {

bool SideSession::holds(const std::string& modulus) {
    CK_ATTRIBUTE wanted = entry_of(CKA_MODULUS, modulus);
    CK_OBJECT_HANDLE found = 0;
    CK_ULONG count = 0;
    if (hsm().C_FindObjectsInit(session_, &wanted, 1) != CKR_OK) return false;
    hsm().C_FindObjects(session_, &found, 1, &count);
    hsm().C_FindObjectsFinal(session_);
    return count != 0;
}

bool SideSession::read_part(CK_OBJECT_HANDLE key, CK_ATTRIBUTE_TYPE type, std::string& number) {
    number.resize(1024);
    CK_ATTRIBUTE entry = entry_of(type, number);
    if (hsm().C_GetAttributeValue(session_, key, &entry, 1) != CKR_OK) return false;
    number.resize(entry.ulValueLen);
    return true;
}

// Makes a key pair that ends with its PKCS#11 session, open to be read.
std::optional<RsaKey> SideSession::generate(CK_ULONG bits) {
    CK_BBOOL yes = CK_TRUE;
    CK_BBOOL no = CK_FALSE;
    CK_MECHANISM mechanism{CKM_RSA_PKCS_KEY_PAIR_GEN, nullptr, 0};
    std::string exponent(USUAL_EXPONENT);
    CK_ATTRIBUTE open[] = {entry_for(CKA_MODULUS_BITS, bits), entry_of(CKA_PUBLIC_EXPONENT, exponent)};
    CK_ATTRIBUTE secret[] = {entry_for(CKA_PRIVATE, no), entry_for(CKA_SENSITIVE, no),
                             entry_for(CKA_EXTRACTABLE, yes)};
    CK_OBJECT_HANDLE public_key = 0;
    CK_OBJECT_HANDLE private_key = 0;
    if (hsm().C_GenerateKeyPair(session_, &mechanism, open, 2, secret, 3, &public_key, &private_key) !=
        CKR_OK)
        return std::nullopt;
    RsaKey key;
    for (std::size_t part = 0; part < RsaKey::PARTS; ++part)
        if (!read_part(private_key, PART_TYPES[part], key.numbers[part])) return std::nullopt;
    return key;
}

} // namespace simcard
