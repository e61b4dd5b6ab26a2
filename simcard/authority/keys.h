#pragma once

#include "simcard/authority/openssl_handles.h"

#include <filesystem>
#include <string>
#include <vector>

namespace simcard {

constexpr unsigned key_bits = 2048;

/// Makes a new RSA key pair of `key_bits` with the exponent 65537. This takes a while: see read_key_pairs().
[[nodiscard]] PrivateKey generate_key_pair();

/**
 * Reads every private key of a PEM file, in the file's order, so that cards can be made without waiting for
 * new keys.
 *
 * @throws Refusal when the file cannot be read, or holds something else than RSA keys of `key_bits`.
 */
[[nodiscard]] std::vector<PrivateKey> read_key_pairs(const std::filesystem::path& path);

/// Writes a private key as PEM (PKCS#8, not encrypted) for its owner alone.
void write_private_key(const std::filesystem::path& path, EVP_PKEY& key);

/// Another owner of the same key pair.
[[nodiscard]] PrivateKey share(EVP_PKEY& key);

} // namespace simcard
