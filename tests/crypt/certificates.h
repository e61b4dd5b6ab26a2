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

// What a certificate is to look like. The extensions are lines of an OpenSSL configuration: those of the
// section [ext], after them sections that it names.
struct Attribute {
    std::string type;
    std::string value;
    int form = MBSTRING_UTF8;
};

struct Certificate;
struct Shape {
    std::vector<Attribute> subject{{"CN", "Titolare"}};
    std::string extensions = "basicConstraints = CA:FALSE";
    std::string serial = "0A01";
    std::string notBefore = "20240131010203Z";
    std::string notAfter = "20991231235959Z";
    const Certificate* issuer = nullptr; // itself without one
    KeyPtr key;                          // a new one of its own without one
};

struct Certificate {
    std::shared_ptr<X509> x509;
    KeyPtr key;
    Bytes der;
};

[[nodiscard]] Certificate make(const Shape& shape);
[[nodiscard]] Certificate makeAuthority(const std::string& name, const Certificate* issuer = nullptr);

[[nodiscard]] Bytes derOf(X509& certificate);
[[nodiscard]] std::string base64(const Bytes& bytes);
[[nodiscard]] std::string pem(const Bytes& bytes, const std::string& label = "CERTIFICATE");
[[nodiscard]] Bytes bundle(const std::vector<Certificate>& certificates);

[[nodiscard]] inline std::string lastError() {
    char text[512];
    (void)kvLastError(text, sizeof text);
    return text;
}

} // namespace test
