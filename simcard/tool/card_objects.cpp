#include "simcard/tool/card_objects.h"

#include "simcard/authority/errors.h"

#include <openssl/core_names.h>
#include <openssl/crypto.h>
#include <openssl/x509.h>

#include <span>

namespace simcard {
namespace {

struct KeyNumber {
    CK_ATTRIBUTE_TYPE type;
    const char* name;
};

constexpr KeyNumber PUBLIC_NUMBERS[] = {
    {CKA_MODULUS, OSSL_PKEY_PARAM_RSA_N},
    {CKA_PUBLIC_EXPONENT, OSSL_PKEY_PARAM_RSA_E},
};

constexpr KeyNumber PRIVATE_NUMBERS[] = {
    {CKA_PRIVATE_EXPONENT, OSSL_PKEY_PARAM_RSA_D},   {CKA_PRIME_1, OSSL_PKEY_PARAM_RSA_FACTOR1},
    {CKA_PRIME_2, OSSL_PKEY_PARAM_RSA_FACTOR2},      {CKA_EXPONENT_1, OSSL_PKEY_PARAM_RSA_EXPONENT1},
    {CKA_EXPONENT_2, OSSL_PKEY_PARAM_RSA_EXPONENT2}, {CKA_COEFFICIENT, OSSL_PKEY_PARAM_RSA_COEFFICIENT1},
};

void add_key_numbers(Attributes& object, const EVP_PKEY& key, std::span<const KeyNumber> numbers) {
    for (const KeyNumber& number : numbers) {
        BIGNUM* raw = nullptr;
        EVP_PKEY_get_bn_param(&key, number.name, &raw);
        const ossl::BigNumber value = ossl::made(ossl::BigNumber(raw));
        std::string bytes(static_cast<std::size_t>(BN_num_bytes(value.get())), '\0');
        BN_bn2bin(value.get(), reinterpret_cast<unsigned char*>(bytes.data()));
        object.add(number.type, bytes);
        OPENSSL_cleanse(bytes.data(), bytes.size());
    }
}

Attributes token_object(CK_OBJECT_CLASS object_class, bool is_private, std::string_view label) {
    Attributes object;
    object.add_number(CKA_CLASS, object_class).add_flag(CKA_TOKEN, true).add_flag(CKA_PRIVATE, is_private);
    object.add(CKA_LABEL, label);
    return object;
}

// The DER of an OpenSSL object by its i2d function.
template <class Object, class Encode> std::string der(Encode encode, Object* object) {
    unsigned char* bytes = nullptr;
    const int length = encode(object, &bytes);
    if (length < 0) fail_with_openssl_reason("Encoding a certificate");
    std::string text(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
    OPENSSL_free(bytes);
    return text;
}

} // namespace

Attributes public_key_object(const EVP_PKEY& key, std::string_view id, Label label) {
    Attributes object = token_object(CKO_PUBLIC_KEY, false, label.value_or(id));
    object.add(CKA_ID, id)
        .add_number(CKA_KEY_TYPE, CKK_RSA)
        .add_flag(CKA_VERIFY, true)
        .add_flag(CKA_ENCRYPT, true);
    add_key_numbers(object, key, PUBLIC_NUMBERS);
    return object;
}

Attributes private_key_object(const EVP_PKEY& key, std::string_view id, bool asks, Label label) {
    Attributes object = token_object(CKO_PRIVATE_KEY, true, label.value_or(id));
    object.add(CKA_ID, id)
        .add_number(CKA_KEY_TYPE, CKK_RSA)
        .add_flag(CKA_SENSITIVE, true)
        .add_flag(CKA_EXTRACTABLE, false);
    object.add_flag(CKA_SIGN, true).add_flag(CKA_DECRYPT, true);
    if (asks) object.add_flag(CKA_ALWAYS_AUTHENTICATE, true);
    add_key_numbers(object, key, PUBLIC_NUMBERS);
    add_key_numbers(object, key, PRIVATE_NUMBERS);
    return object;
}

Attributes certificate_object(X509& certificate, std::string_view id, Label label) {
    Attributes object = token_object(CKO_CERTIFICATE, false, label.value_or(id));
    object.add(CKA_ID, id).add_number(CKA_CERTIFICATE_TYPE, CKC_X_509);
    object.add(CKA_VALUE, der(i2d_X509, &certificate));
    object.add(CKA_SUBJECT, der(i2d_X509_NAME, X509_get_subject_name(&certificate)));
    object.add(CKA_ISSUER, der(i2d_X509_NAME, X509_get_issuer_name(&certificate)));
    object.add(CKA_SERIAL_NUMBER, der(i2d_ASN1_INTEGER, X509_get_serialNumber(&certificate)));
    return object;
}

Attributes broken_certificate_object(std::string_view bytes, std::string_view id, Label label) {
    Attributes object = token_object(CKO_CERTIFICATE, false, label.value_or(id));
    object.add(CKA_ID, id).add_number(CKA_CERTIFICATE_TYPE, CKC_X_509);
    object.add(CKA_VALUE, bytes).add(CKA_SUBJECT, {});
    return object;
}

Attributes public_data_object(std::string_view label, std::string_view value, std::string_view application) {
    Attributes object = token_object(CKO_DATA, false, label);
    if (!application.empty()) object.add(CKA_APPLICATION, application);
    object.add(CKA_VALUE, value);
    return object;
}

} // namespace simcard
