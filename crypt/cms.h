#pragma once

#include "certificate.h"
#include "hash.h"

#include <ctime>

namespace zvcrypt {

// The parts of a CMS SignedData with its content attached and one RSA signer, named by issuer and serial
// number.

// Content type, message digest, signing time and signing-certificate-v2, as the SET that is signed.
[[nodiscard]] Bytes signedAttributes(const Bytes& contentDigest, const Certificate& signer,
                                     std::time_t signingTime);

// PKCS#1 DigestInfo: what the card's RSA operation pads and signs.
[[nodiscard]] Bytes digestInfo(const HashAlgorithm& hash, const Bytes& digest);

// A SignedData around content that is not in memory: what goes before its bytes, and after them.
struct SignedDataFrame {
    Bytes head;
    Bytes tail;
};

[[nodiscard]] SignedDataFrame signedDataFrame(std::size_t contentLength, const HashAlgorithm& hash,
                                              const Bytes& attributes, const Bytes& signature,
                                              const Certificate& signer, const Certificate* issuer);

} // namespace zvcrypt
