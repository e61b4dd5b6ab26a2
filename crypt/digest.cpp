#include "zvCrypt.h"

#include <openssl/evp.h>

#include <algorithm>

void Sha1Digest(int length, unsigned char* data, unsigned char* digest) {
    if (digest == nullptr) return;
    std::fill_n(digest, ZVC_SHA1_SIZE, static_cast<unsigned char>(0));
    const auto size = static_cast<std::size_t>(std::max(length, 0));
    if (data == nullptr && size > 0) return;
    (void)EVP_Q_digest(nullptr, "SHA1", nullptr, data, size, digest, nullptr);
}
