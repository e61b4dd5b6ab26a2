#include "crypt/certificate_parts.h"
#include "crypt/failure.h"
#include "crypt/name.h"
#include "crypt/policies.h"
#include "crypt/tax_code.h"
#include "crypt/text.h"

#include <openssl/objects.h>

#include <algorithm>
#include <functional>

namespace zvcrypt {
namespace {

// The one way of every field: the certificate in, a bounded text out.
int on_certificate(const unsigned char* der, unsigned long length, char* out, int size,
                   const std::function<void(const CertificateParts&, std::span<char>)>& write) {
    return run_operation([&] {
        const auto buffer = output_buffer(out, size);
        require_arguments({der});
        write(take_apart({der, length}), buffer);
    });
}

int field(const unsigned char* der, unsigned long length, char* out, int size,
          const std::function<std::string(const CertificateParts&)>& read) {
    return on_certificate(der, length, out, size,
                          [&](const CertificateParts& certificate, std::span<char> buffer) {
                              write_text(read(certificate), buffer);
                          });
}

int pieces(const unsigned char* der, unsigned long length, char* out, int size,
           std::vector<std::string> (*read)(const CertificateParts&)) {
    return on_certificate(der, length, out, size,
                          [&](const CertificateParts& certificate, std::span<char> buffer) {
                              write_pieces(read(certificate), buffer);
                          });
}

// Half a byte would be another number.
std::vector<std::string> hex_bytes(der::Span bytes) {
    std::vector<std::string> digits;
    for (const unsigned char byte : bytes)
        digits.push_back(upper_hex({&byte, 1}));
    return digits;
}

// The amount of the number in the fewest bytes, with its sign in front.
std::vector<std::string> serial_number(const CertificateParts& certificate) {
    Bytes number(certificate.serial.begin(), certificate.serial.end());
    const bool negative = number.front() >= 0x80;
    if (negative) {
        for (auto& byte : number)
            byte = static_cast<unsigned char>(~byte);
        auto last = number.rbegin();
        while (last != number.rend() && ++*last == 0)
            ++last;
    }
    number.erase(number.begin(),
                 std::find_if(number.begin(), number.end() - 1, [](auto byte) { return byte != 0; }));
    auto digits = hex_bytes(number);
    if (negative) digits.front().insert(0, "-");
    return digits;
}

std::vector<std::string> subject_key_identifier(const CertificateParts& certificate) {
    const auto value = extension_value(certificate, NID_subject_key_identifier);
    if (!value) return {};
    der::Reader reader(*value, "L'identificativo della chiave del titolare non è leggibile");
    const auto identifier = reader.next(der::octet_string);
    if (!reader.at_end()) reader.complain();
    return hex_bytes(identifier.content);
}

// A part of an identifier is another identifier.
std::vector<std::string> policy_pieces(const CertificateParts& certificate) {
    auto identifiers = policy_identifiers(certificate);
    for (std::size_t i = 1; i < identifiers.size(); ++i)
        identifiers[i].insert(0, ",");
    return identifiers;
}

} // namespace
} // namespace zvcrypt

using Parts = zvcrypt::CertificateParts;

int kvGetSubjectDN(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size,
                          [](const Parts& certificate) { return zvcrypt::slash_name(certificate.subject); });
}

int kvGetIssuerDN(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size,
                          [](const Parts& certificate) { return zvcrypt::slash_name(certificate.issuer); });
}

int kvX509GetSerial(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::pieces(der, length, out, size, zvcrypt::serial_number);
}

int kvGetIUT(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size, [](const Parts& certificate) {
        return zvcrypt::name_attribute(certificate.subject, NID_dnQualifier);
    });
}

int kvGetCodFisc(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size, [](const Parts& certificate) {
        return zvcrypt::tax_code(zvcrypt::name_attribute(certificate.subject, NID_serialNumber),
                                 zvcrypt::name_attribute(certificate.subject, NID_commonName));
    });
}

int kvGetCertificatePolicies(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::pieces(der, length, out, size, zvcrypt::policy_pieces);
}

int kvGetExplicitText(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size, zvcrypt::explicit_text);
}

int zv_X509V3_get_subject_key_identifier(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::pieces(der, length, out, size, zvcrypt::subject_key_identifier);
}
