#include "certificate.h"
#include "failure.h"
#include "policies.h"
#include "tax_code.h"
#include "text.h"

#include <openssl/bn.h>

#include <functional>

namespace zvcrypt {
namespace {

// The one way of every field: the certificate in, a bounded text out.
int field(const unsigned char* der, unsigned long length, char* out, int size,
          const std::function<std::string(X509&)>& read) {
    return runOperation([&] {
        const auto buffer = outputBuffer(out, size);
        requireArguments({der});
        writeText(read(*requireCertificate(der, length)), buffer);
    });
}

std::string serialNumber(X509& certificate) {
    const OpensslPtr<BIGNUM, BN_free> number(
        ASN1_INTEGER_to_BN(X509_get0_serialNumber(&certificate), nullptr));
    if (!number) throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il numero di serie del certificato non è leggibile");
    Bytes bytes(std::max<std::size_t>(1, static_cast<std::size_t>(BN_num_bytes(number.get()))));
    (void)BN_bn2bin(number.get(), bytes.data());
    return (BN_is_negative(number.get()) != 0 ? "-" : "") + upperHex(bytes);
}

std::string subjectKeyIdentifier(X509& certificate) {
    const ASN1_OCTET_STRING* identifier = X509_get0_subject_key_id(&certificate);
    if (identifier == nullptr) return {};
    return upperHex(
        {ASN1_STRING_get0_data(identifier), static_cast<std::size_t>(ASN1_STRING_length(identifier))});
}

} // namespace
} // namespace zvcrypt

int kvGetSubjectDN(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size,
                          [](X509& it) { return zvcrypt::slashName(*X509_get_subject_name(&it)); });
}

int kvGetIssuerDN(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size,
                          [](X509& it) { return zvcrypt::slashName(*X509_get_issuer_name(&it)); });
}

int kvX509GetSerial(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size, zvcrypt::serialNumber);
}

int kvGetIUT(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size, [](X509& it) {
        return zvcrypt::nameAttribute(*X509_get_subject_name(&it), NID_dnQualifier).value_or("");
    });
}

int kvGetCodFisc(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size, [](X509& it) {
        const auto& subject = *X509_get_subject_name(&it);
        return zvcrypt::taxCode(zvcrypt::nameAttribute(subject, NID_serialNumber).value_or(""),
                                zvcrypt::nameAttribute(subject, NID_commonName).value_or(""));
    });
}

int kvGetCertificatePolicies(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::runOperation([&] {
        const auto buffer = zvcrypt::outputBuffer(out, size);
        zvcrypt::requireArguments({der});
        const auto policies = zvcrypt::policyIdentifiers(*zvcrypt::requireCertificate(der, length));
        std::string text;
        for (const auto& policy : policies) {
            const std::string next = (text.empty() ? "" : ",") + policy;
            // A part of an identifier is another identifier.
            if (text.size() + next.size() >= buffer.size()) {
                (void)zvcrypt::copyText(text, buffer);
                throw zvcrypt::Failure(ZVC_ERR_CUT,
                                       "Non tutte le policy del certificato sono state riportate");
            }
            text += next;
        }
        zvcrypt::writeText(text, buffer);
    });
}

int kvGetExplicitText(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size, zvcrypt::explicitText);
}

int zv_X509V3_get_subject_key_identifier(unsigned char* der, unsigned long length, char* out, int size) {
    return zvcrypt::field(der, length, out, size, zvcrypt::subjectKeyIdentifier);
}
