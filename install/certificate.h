#pragma once

#include "zvCrypt.h"

#include <algorithm>
#include <span>

// Certificates as the card gets them, at most 8192 bytes of DER. Each returns 0 or ZV_FAILED.
namespace zv {

// The DER of a record, as long as it says, and never longer than it can be; without a record no place either.
inline std::span<unsigned char> der_of(datiCert* certificate, unsigned long length) {
    if (certificate == nullptr) return {};
    return {certificate->der, std::min<unsigned long>(length, sizeof certificate->der)};
}

// The certificate of the pending key; when it cannot be written, the pair gets its pending text back.
[[nodiscard]] int install_user_certificate(std::span<unsigned char> der, const char* label,
                                           char* module_path);

// An authority's certificate, no key checked.
[[nodiscard]] int install_authority_certificate(std::span<unsigned char> der, const char* label);

} // namespace zv
