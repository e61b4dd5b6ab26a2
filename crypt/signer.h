#pragma once

#include "crypt/certificate.h"
#include "crypt/session.h"

#include <string_view>

namespace zvcrypt {

// A private key of the card that signs, its certificate, and that certificate's issuer if the card holds it.
struct CardSigner {
    CK_OBJECT_HANDLE key = CK_INVALID_HANDLE;
    Certificate certificate;
    Certificate issuer; // empty when the card does not hold it
};

// Finds the key and its certificate under that CKA_ID. Where several carry it, a pair that fits by its modulus
// is taken, and of a key's certificates the preferred one. ZVC_ERR_KEY or ZVC_ERR_CERTIFICATE without one.
[[nodiscard]] CardSigner find_signer(const Session& session, std::string_view key_id);

} // namespace zvcrypt
