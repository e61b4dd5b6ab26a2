#include "crypt/hash.h"

#include "crypt/failure.h"

#include <array>
#include <new>

namespace zvcrypt {
namespace {

constexpr std::array<HashAlgorithm, 3> ALGORITHMS{{
    {"SHA256", NID_sha256, EVP_sha256},
    {"SHA384", NID_sha384, EVP_sha384},
    {"SHA512", NID_sha512, EVP_sha512},
}};

void require(int result) {
    if (result != 1) throw Failure(ZVC_ERR_INTERNAL, "Errore interno nel calcolo dell'impronta");
}

} // namespace

const HashAlgorithm& hash_algorithm(std::string_view name) {
    for (const auto& algorithm : ALGORITHMS)
        if (algorithm.name == name) return algorithm;
    throw Failure(ZVC_ERR_HASH, "Algoritmo di impronta non ammesso: " + std::string(name));
}

ossl::DigestContext new_digest_context() {
    ossl::DigestContext context(EVP_MD_CTX_new());
    if (!context) throw std::bad_alloc();
    return context;
}

Digest::Digest(const HashAlgorithm& algorithm) : context_(new_digest_context()) {
    require(EVP_DigestInit_ex2(context_.get(), algorithm.digest(), nullptr));
}

void Digest::update(std::span<const unsigned char> bytes) {
    require(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()));
}

Bytes Digest::finish() {
    Bytes digest(EVP_MAX_MD_SIZE);
    unsigned length = 0;
    require(EVP_DigestFinal_ex(context_.get(), digest.data(), &length));
    digest.resize(length);
    return digest;
}

Bytes digest_of(const HashAlgorithm& algorithm, std::span<const unsigned char> bytes) {
    Digest digest(algorithm);
    digest.update(bytes);
    return digest.finish();
}

} // namespace zvcrypt
