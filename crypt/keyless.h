#pragma once

#include <openssl/types.h>

namespace zvcrypt {

// OpenSSL tries each decoder that it has on the key of a certificate that it reads, in fifteen times the time that the
// rest takes. What is read in these surroundings keeps its key as bytes; there is no digest in them either. Null when
// there is no memory, which stands for OpenSSL's usual ones.
[[nodiscard]] OSSL_LIB_CTX* keyless() noexcept;

} // namespace zvcrypt
