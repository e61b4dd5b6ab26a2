#pragma once

#include "ossl/owners.h"
#include "tests/crypt/certificates.h"

#include <gtest/gtest.h>
#include <openssl/objects.h>

// Certificates put together byte by byte, for what OpenSSL would not make. DER stands in strings.
namespace test {

using namespace std::string_literals;
enum : int { utf8 = 0x0C, printable = 0x13, t61 = 0x14, ia5 = 0x16, utc = 0x17, generalized = 0x18 };
enum : int { visible = 0x1A, universal = 0x1C, bmp = 0x1E, sequence = 0x30, set = 0x31 };

inline std::string as_text(const Bytes& der) {
    return {der.begin(), der.end()};
}

inline std::string tlv(int tag, const std::string& content) {
    const auto size = content.size(), high = size >> 8;
    const std::string more = high != 0 ? "\x82"s + static_cast<char>(high) : size > 0x7F ? "\x81" : "";
    return static_cast<char>(tag) + more + static_cast<char>(size & 0xFF) + content;
}

inline std::string oid(const std::string& name_or_number) {
    const ossl::Owner<ASN1_OBJECT, ASN1_OBJECT_free> object(OBJ_txt2obj(name_or_number.c_str(), 0));
    return as_text(encoded<ASN1_OBJECT>(i2d_ASN1_OBJECT, object.get()));
}

inline std::string rdn(const std::string& type, int tag, const std::string& value) {
    return tlv(set, tlv(sequence, oid(type) + tlv(tag, value)));
}

inline std::string extension(const std::string& type, const std::string& value) {
    return tlv(sequence, oid(type) + tlv(0x01, "\xFF") + tlv(0x04, value));
}

inline std::string rsa_key(std::size_t bits) {
    const auto key = tlv(sequence, tlv(2, '\0' + std::string(bits / 8, '\xC1')) + tlv(2, "\3"));
    return tlv(sequence, tlv(sequence, oid("rsaEncryption") + tlv(5, "")) + tlv(3, '\0' + key));
}

struct Raw {
    std::string serial = "\x0A"; // content bytes
    std::string subject = rdn("CN", utf8, "Titolare");
    std::string validity = tlv(utc, "240131010203Z") + tlv(generalized, "20991231235959Z");
    std::string key = rsa_key(1024);
    std::string extensions = "";
};

inline Bytes encode(const Raw& raw) {
    const std::string algorithm = tlv(sequence, oid("RSA-SHA256") + tlv(5, ""));
    const std::string issuer = tlv(sequence, rdn("C", printable, "IT") + rdn("CN", t61, "Autorit\xE0"));
    const std::string body = tlv(0xA0, tlv(2, "\2")) + tlv(2, raw.serial) + algorithm + issuer +
                             tlv(sequence, raw.validity) + tlv(sequence, raw.subject) + raw.key +
                             tlv(0xA3, tlv(sequence, raw.extensions));
    const auto der = tlv(sequence, tlv(sequence, body) + algorithm + tlv(3, std::string(65, '\0')));
    return {der.begin(), der.end()};
}

// A buffer whose end is watched.
struct Guarded : std::vector<char> {
    explicit Guarded(int size) : vector(static_cast<std::size_t>(size) + 1, 'x') {}
    ~Guarded() { EXPECT_EQ(back(), 'x') << "written past the end"; }
};

using Field = int (*)(unsigned char*, unsigned long, char*, int);
constexpr int ANY_CODE = -1;

// Reads a field of a certificate that ends where its memory does: a copy has no room to spare.
inline std::string read(Field field, Bytes der, int size = 512, int expected = ZVC_OK) {
    der.reserve(1);
    Guarded buffer(size);
    const int code = field(der.data(), der.size(), buffer.data(), size);
    EXPECT_TRUE(code == expected || expected == ANY_CODE) << code << ' ' << last_error();
    EXPECT_EQ(last_error().empty(), code == ZVC_OK) << code;
    EXPECT_LT(std::string(buffer.data()).size() + 1, buffer.size()) << "not terminated";
    return buffer.data();
}

} // namespace test
