#include "host/public_key.h"

#include "host/certificate.h"
#include "ossl/owners.h"

#include <openssl/core_names.h>
#include <openssl/err.h>
#include <openssl/param_build.h>

#include <algorithm>

namespace zvhost {
namespace {

ossl::BigNumber number_of(const Bytes& bytes) {
    return ossl::BigNumber(BN_bin2bn(bytes.data(), static_cast<int>(bytes.size()), nullptr));
}

ossl::Key rsa_key(const BIGNUM& modulus, const BIGNUM& exponent) {
    const ossl::Owner<OSSL_PARAM_BLD, OSSL_PARAM_BLD_free> builder(OSSL_PARAM_BLD_new());
    OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_RSA_N, &modulus);
    OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_RSA_E, &exponent);
    const ossl::Owner<OSSL_PARAM, OSSL_PARAM_free> parameters(OSSL_PARAM_BLD_to_param(builder.get()));
    const ossl::KeyContext context(EVP_PKEY_CTX_new_from_name(nullptr, "RSA", nullptr));
    EVP_PKEY* key = nullptr;
    if (EVP_PKEY_fromdata_init(context.get()) == 1)
        EVP_PKEY_fromdata(context.get(), &key, EVP_PKEY_PUBLIC_KEY, parameters.get());
    ERR_clear_error();
    return ossl::Key(key);
}

} // namespace

Bytes public_key_of(const Bytes& modulus, const Bytes& exponent) {
    if (modulus.empty() || exponent.empty()) return {};
    const ossl::Key key = rsa_key(*number_of(modulus), *number_of(exponent));
    unsigned char* data = nullptr;
    const int length = key ? i2d_PUBKEY(key.get(), &data) : 0;
    Bytes der(data, data + std::max(length, 0));
    OPENSSL_free(data);
    return der;
}

Bytes modulus_of_public_key(const Bytes& der) {
    const unsigned char* at = der.data();
    const ossl::Key key(d2i_PUBKEY(nullptr, &at, static_cast<long>(der.size())));
    return modulus_of(key.get());
}

} // namespace zvhost
