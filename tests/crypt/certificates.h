#pragma once

#include "zvCrypt.h"

#include <openssl/asn1.h>
#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>
#include <string>
#include <vector>

namespace test {

using Bytes = std::vector<unsigned char>;
using KeyPtr = std::shared_ptr<EVP_PKEY>;

struct Certificate {
    std::shared_ptr<X509> x509;
    KeyPtr key;
    Bytes der;
};

// What a certificate is to look like.
struct Shape {
    std::string subject = "CN=Titolare"; // attributes joined by '|'
    int form = MBSTRING_UTF8;            // or a string type that takes the bytes as they are
    // The section [ext] of an OpenSSL configuration; sections that it names may follow.
    std::string extensions = "basicConstraints = CA:FALSE";
    std::string serial = "0A01";
    std::string not_before = "20240131010203Z";
    std::string not_after = "20991231235959Z";
    const Certificate* issuer = nullptr; // itself without one
    KeyPtr key = nullptr;                // a new one without one
};

[[nodiscard]] Certificate make(const Shape& shape);
[[nodiscard]] Certificate make_authority(const std::string& name, const Certificate* issuer = nullptr);
// Puts what authorities issue into one that make() made with these: a BMPString of odd length, a Latin-1 byte in a
// UTF8String, a serial number with a needless byte.
inline constexpr const char* WILD_SUBJECT = "O=abc|CN=Titolare";
inline constexpr const char* WILD_SERIAL = "0F0F8A01";
[[nodiscard]] Bytes wild(Bytes der);
// The same, signed once more by the issuer.
[[nodiscard]] Bytes wild(const Certificate& certificate, const Certificate& issuer);
[[nodiscard]] std::string base64(const Bytes& bytes);
[[nodiscard]] std::string pem(const Bytes& bytes, const std::string& label = "CERTIFICATE");
[[nodiscard]] Bytes bundle(const std::vector<Certificate>& certificates);

template <class T> [[nodiscard]] Bytes encoded(int (*encode)(const T*, unsigned char**), const T* object) {
    Bytes der(static_cast<std::size_t>(encode(object, nullptr)));
    unsigned char* end = der.data();
    (void)encode(object, &end);
    return der;
}

[[nodiscard]] inline std::string last_error() {
    char text[512];
    (void)kvLastError(text, sizeof text);
    return text;
}

} // namespace test
