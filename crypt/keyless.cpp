#include "crypt/keyless.h"

#include <openssl/crypto.h>
#include <openssl/provider.h>

namespace zvcrypt {
namespace {

// With no provider of its own it would load the usual one.
OSSL_LIB_CTX* new_keyless() noexcept {
    OSSL_LIB_CTX* made = OSSL_LIB_CTX_new();
    if (made != nullptr && OSSL_PROVIDER_load(made, "null") != nullptr) return made;
    OSSL_LIB_CTX_free(made);
    return nullptr;
}

} // namespace

OSSL_LIB_CTX* keyless() noexcept {
    static OSSL_LIB_CTX* const context = new_keyless(); // as long as the process, as OpenSSL's own
    return context;
}

} // namespace zvcrypt
