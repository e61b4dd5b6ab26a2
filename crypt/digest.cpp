#include "ossl/owners.h"
#include "zvCrypt.h"

#include <algorithm>
#include <utility>

namespace {

ossl::DigestContext new_context() noexcept {
    ossl::DigestContext context(EVP_MD_CTX_new());
    if (context != nullptr && EVP_DigestInit_ex2(context.get(), EVP_sha1(), nullptr) != 1) context.reset();
    return context;
}

// Made ahead, when there is memory: nobody is told of a digest that fails, and the card would sign its
// zeros. It lives as long as the process.
EVP_MD_CTX* next_context = new_context().release();

} // namespace

void Sha1Digest(int length, unsigned char* data, unsigned char* digest) {
    if (digest == nullptr) return;
    std::fill_n(digest, ZVC_SHA1_SIZE, static_cast<unsigned char>(0));
    const auto size = static_cast<std::size_t>(std::max(length, 0));
    if (data == nullptr && size > 0) return;
    ossl::DigestContext context(std::exchange(next_context, nullptr));
    if (context == nullptr) context = new_context();
    if (context != nullptr && EVP_DigestUpdate(context.get(), data, size) == 1)
        (void)EVP_DigestFinal_ex(context.get(), digest, nullptr);
    next_context = new_context().release();
}
