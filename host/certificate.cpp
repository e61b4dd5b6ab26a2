#include "host/certificate.h"

#include "lenient/mended.h"
#include "ossl/owners.h"
#include "zvCrypt.h"
#include "zvRenew.h"

#include <openssl/core_names.h>
#include <openssl/err.h>

namespace zvhost {

Certificate certificate_from(const Bytes& der) {
    Bytes whole = without_padding(der);
    const Bytes readable = lenient::mended(whole);
    const unsigned char* at = readable.data();
    X509* read = readable.empty() ? nullptr : d2i_X509(nullptr, &at, static_cast<long>(readable.size()));
    ERR_clear_error();
    return {std::move(whole), read};
}

Bytes modulus_of(EVP_PKEY* key) {
    BIGNUM* number = nullptr;
    if (key == nullptr || EVP_PKEY_get_bn_param(key, OSSL_PKEY_PARAM_RSA_N, &number) != 1) {
        ERR_clear_error();
        return {};
    }
    const ossl::BigNumber owned(number);
    Bytes modulus(static_cast<std::size_t>(BN_num_bytes(number)));
    BN_bn2bin(number, modulus.data());
    return modulus;
}

Bytes modulus_of(X509& certificate) {
    return modulus_of(X509_get0_pubkey(&certificate));
}

Bytes without_padding(const Bytes& stored) {
    const unsigned char* at = stored.data();
    long length = 0;
    int tag = 0;
    int type = 0;
    const int head = ASN1_get_object(&at, &length, &tag, &type, static_cast<long>(stored.size()));
    ERR_clear_error();
    if (head != V_ASN1_CONSTRUCTED) return {};
    return {stored.data(), at + length};
}

std::string base64_of(const Bytes& bytes) {
    std::string text(4 * ((bytes.size() + 2) / 3) + 1, '\0');
    const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes.data(),
                                       static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

Sentence why_not_storable(const Certificate& certificate) {
    const EVP_PKEY* key = X509_get0_pubkey(certificate.get());
    if (key == nullptr || EVP_PKEY_is_a(key, "RSA") != 1) return {"key-not-rsa", {}};
    if (EVP_PKEY_get_bits(key) > ZV_KEY_BITS) return {"key-too-long", {{"bits", long{ZV_KEY_BITS}}}};
    for (X509_NAME* name :
         {X509_get_subject_name(certificate.get()), X509_get_issuer_name(certificate.get())})
        if (i2d_X509_NAME(name, nullptr) > ZVC_CARD_NAME_SIZE)
            return {"names-too-long", {{"bytes", long{ZVC_CARD_NAME_SIZE}}}};
    if (base64_of(certificate.der()).size() > ZV_CERT_TEXT_MAX) return {"certificate-too-large", {}};
    return {};
}

} // namespace zvhost
