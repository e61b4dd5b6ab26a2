#pragma once

#include "pkcs11.h"
#include "simcard/module/key_file.h"

#include <string>
#include <string_view>

// The numbers of a key pair from the file as PKCS#11 has them.
namespace simcard {

inline constexpr CK_ATTRIBUTE_TYPE PART_TYPES[RsaKey::PARTS] = {
    CKA_MODULUS, CKA_PUBLIC_EXPONENT, CKA_PRIVATE_EXPONENT, CKA_PRIME_1,
    CKA_PRIME_2, CKA_EXPONENT_1,      CKA_EXPONENT_2,       CKA_COEFFICIENT,
};

// The public exponent of the keys in the file, 65537.
inline constexpr std::string_view USUAL_EXPONENT("\x01\x00\x01", 3);

inline CK_ATTRIBUTE entry_of(CK_ATTRIBUTE_TYPE type, const std::string& value) {
    return {type, const_cast<char*>(value.data()), value.size()};
}

// SoftHSM only reads it.
template <class T> CK_ATTRIBUTE entry_for(CK_ATTRIBUTE_TYPE type, const T& value) {
    return {type, const_cast<T*>(&value), sizeof value};
}

} // namespace simcard
