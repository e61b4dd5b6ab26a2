#pragma once

#include "ossl/owners.h"

#include <deque>
#include <filesystem>

namespace simcard {

constexpr unsigned KEY_BITS = 2048;

// Where the key pairs of cards and authorities come from: those made ready, in their order, then new ones
// (RSA, exponent 65537). Making one takes a while, so tests bring theirs.
class KeySource {
  public:
    KeySource() = default;

    // Reads every private key of a PEM file.
    //
    // @throws Refusal when the file cannot be read, or holds something else than RSA keys of `key_bits`.
    [[nodiscard]] static KeySource from_file(const std::filesystem::path& path);

    // The next key pair; one of another size than those made ready is a new one. @throws Failure when it cannot be
    // made.
    [[nodiscard]] ossl::Key next(unsigned bits = KEY_BITS);

  private:
    std::deque<ossl::Key> ready_;
};

// Writes a private key as PEM (PKCS#8, not encrypted) for its owner alone.
void write_private_key(const std::filesystem::path& path, EVP_PKEY& key);

} // namespace simcard
