#pragma once

#include "card/session.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

// The certificate object that is written to the card: one template, whose lengths alone change.
namespace zv {

constexpr std::size_t CERTIFICATE_ENTRIES = 9;

extern CK_ATTRIBUTE CertTemplate[CERTIFICATE_ENTRIES];
extern CK_OBJECT_HANDLE hCert; // the object created last

// A part of a certificate, as the crypto library takes it out: how much there is never counts for more than its room.
template <std::size_t N> struct CertificatePart {
    std::array<unsigned char, N> buffer{};
    unsigned long length = N;
    char* data() { return reinterpret_cast<char*>(buffer.data()); }
    [[nodiscard]] std::span<const unsigned char> bytes() const {
        return std::span(buffer).first(std::min<std::size_t>(length, N));
    }
};

struct CertificateParts {
    CertificatePart<512> subject, issuer;
    CertificatePart<256> serial;

    // Returns the crypto library's code; a failure is logged under title.
    int read(const char* title, std::span<unsigned char> der);
    // Drops the zero bytes in front of the serial number.
    void trim_serial();
};

// Logs that a certificate is about to be created, and where its handle will go.
void trace_creation(CK_SESSION_HANDLE session, CK_ULONG entries, const CK_OBJECT_HANDLE* created);

// Fills the template, logs the call and creates the object. Returns the PKCS#11 result, logged when it is a
// failure.
CK_RV create_certificate(const char* title, std::span<const unsigned char> der, const char* label,
                         const CertificateParts& parts);

} // namespace zv
