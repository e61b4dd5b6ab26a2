#pragma once

#include "crypt/certificate.h"
#include "crypt/hash.h"

#include <ctime>

namespace zvcrypt {

// The parts of a CMS SignedData with its content attached and one RSA signer, named by issuer and serial
// number.

// Content type, message digest, signing time and signing-certificate-v2, as the SET that is signed.
[[nodiscard]] Bytes signed_attributes(const Bytes& content_digest, const Certificate& signer,
                                      std::time_t signing_time);

// PKCS#1 DigestInfo: what the card's RSA operation pads and signs.
[[nodiscard]] Bytes digest_info(const HashAlgorithm& hash, const Bytes& digest);

// A SignedData around content that is not in memory: what goes before its bytes, and after them.
struct SignedDataFrame {
    Bytes head;
    Bytes tail;
};

[[nodiscard]] SignedDataFrame signed_data_frame(std::size_t content_length, const HashAlgorithm& hash,
                                                const Bytes& attributes, const Bytes& signature,
                                                const Certificate& signer, const Certificate* issuer);

} // namespace zvcrypt
