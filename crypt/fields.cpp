#include "certificate_parts.h"
#include "failure.h"
#include "name.h"
#include "policies.h"
#include "tax_code.h"
#include "text.h"

#include <algorithm>
#include <functional>

namespace zvcrypt {
namespace {

// The one way of every field: the certificate in, a bounded text out.
int onCertificate(const unsigned char* der, unsigned long length, char* out, int size,
                  const std::function<void(const CertificateParts&, std::span<char>)>& write) {
    return runOperation([&] {
        const auto buffer = outputBuffer(out, size);
        requireArguments({der});
        write(takeApart({der, length}), buffer);
    });
}

int field(const unsigned char* der, unsigned long length, char* out, int size,
          const std::function<std::string(const CertificateParts&)>& read) {
    return onCertificate(der, length, out, size,
                         [&](const CertificateParts& certificate, std::span<char> buffer) {
                             writeText(read(certificate), buffer);
                         });
}

int pieces(const unsigned char* der, unsigned long length, char* out, int size,
           std::vector<std::string> (*read)(const CertificateParts&)) {
    return onCertificate(der, length, out, size,
                         [&](const CertificateParts& certificate, std::span<char> buffer) {
                             writePieces(read(certificate), buffer);
                         });
}

// Half a byte would be another number.
std::vector<std::string> hexBytes(der::Span bytes) {
    std::vector<std::string> digits;
    for (const unsigned char byte : bytes)
        digits.push_back(upperHex({&byte, 1}));
    return digits;
}

// The amount of the number in the fewest bytes, with its sign in front.
std::vector<std::string> serialNumber(const CertificateParts& certificate) {
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
    auto digits = hexBytes(number);
    if (negative) digits.front().insert(0, "-");
    return digits;
}

std::vector<std::string> subjectKeyIdentifier(const CertificateParts& certificate) {
    const auto value = extensionValue(certificate, NID_subject_key_identifier);
    if (!value) return {};
    der::Reader reader(*value, "L'identificativo della chiave del titolare non è leggibile");
    const auto identifier = reader.next(der::octetString);
    if (!reader.atEnd()) reader.complain();
    return hexBytes(identifier.content);
}

// A part of an identifier is another identifier.
std::vector<std::string> policyPieces(const CertificateParts& certificate) {
    auto identifiers = policyIdentifiers(certificate);
    for (std::size_t i = 1; i < identifiers.size(); ++i)
        identifiers[i].insert(0, ",");
    return identifiers;
}

} // namespace
} // namespace zvcrypt

using Parts = zvcrypt::CertificateParts;

int kvGetSubjectDN(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size,
                          [](const Parts& certificate) { return zvcrypt::slashName(certificate.subject); });
}

int kvGetIssuerDN(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size,
                          [](const Parts& certificate) { return zvcrypt::slashName(certificate.issuer); });
}

int kvX509GetSerial(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::pieces(der, length, out, size, zvcrypt::serialNumber);
}

int kvGetIUT(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size, [](const Parts& certificate) {
        return zvcrypt::nameAttribute(certificate.subject, NID_dnQualifier);
    });
}

int kvGetCodFisc(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size, [](const Parts& certificate) {
        return zvcrypt::taxCode(zvcrypt::nameAttribute(certificate.subject, NID_serialNumber),
                                zvcrypt::nameAttribute(certificate.subject, NID_commonName));
    });
}

int kvGetCertificatePolicies(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::pieces(der, length, out, size, zvcrypt::policyPieces);
}

int kvGetExplicitText(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size, zvcrypt::explicitText);
}

int zv_X509V3_get_subject_key_identifier(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::pieces(der, length, out, size, zvcrypt::subjectKeyIdentifier);
}
