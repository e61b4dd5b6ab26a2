#pragma once

#include "crypt/bytes.h"
#include "ossl/owners.h"

#include <span>
#include <string_view>

namespace zvcrypt {

// A digest algorithm of signatures.
struct HashAlgorithm {
    std::string_view name;
    int nid;
    const EVP_MD* (*digest)();
};

// ZVC_ERR_HASH for a name that is not supported.
[[nodiscard]] const HashAlgorithm& hash_algorithm(std::string_view name);

[[nodiscard]] ossl::DigestContext new_digest_context();

// A digest that is fed piece by piece.
class Digest {
  public:
    explicit Digest(const HashAlgorithm& algorithm);

    void update(std::span<const unsigned char> bytes);
    [[nodiscard]] Bytes finish();

  private:
    ossl::DigestContext context_;
};

[[nodiscard]] Bytes digest_of(const HashAlgorithm& algorithm, std::span<const unsigned char> bytes);

} // namespace zvcrypt
