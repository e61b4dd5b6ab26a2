#include "simcard/authority/build_certificate.h"

#include "ossl/memory_bio.h"
#include "simcard/authority/errors.h"

#include <openssl/x509v3.h>

namespace simcard {
namespace {

// 16 bytes. Every other one has its top bit set, and so begins with a byte of zero in the certificate.
constexpr int SERIAL_BITS = 128;

void need(int result, const char* step) {
    if (result != 1) fail_with_openssl_reason(step);
}

void set_serial(X509& certificate) {
    const ossl::BigNumber number = ossl::made(ossl::BigNumber(BN_new()));
    need(BN_rand(number.get(), SERIAL_BITS, BN_RAND_TOP_ANY, BN_RAND_BOTTOM_ODD), "Choosing a serial number");
    if (BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(&certificate)) == nullptr)
        fail_with_openssl_reason("Setting the serial number");
}

void set_validity(X509& certificate, Validity validity) {
    if (ASN1_TIME_set(X509_getm_notBefore(&certificate), validity.from) == nullptr ||
        ASN1_TIME_set(X509_getm_notAfter(&certificate), validity.to) == nullptr)
        fail_with_openssl_reason("Setting the dates");
}

void add_extensions(X509& certificate, X509& issuer, const char* text) {
    const ossl::Configuration configuration = ossl::made(ossl::Configuration(NCONF_new(nullptr)));
    const ossl::Bio source = ossl::reading(text);
    need(NCONF_load_bio(configuration.get(), source.get(), nullptr), "Reading the extensions");
    X509V3_CTX context{};
    X509V3_set_ctx(&context, &issuer, &certificate, nullptr, nullptr, 0);
    X509V3_set_nconf(&context, configuration.get());
    need(X509V3_EXT_add_nconf(configuration.get(), &context, "extensions", &certificate),
         "Adding the extensions");
}

} // namespace

ossl::Certificate build_certificate(const CertificatePlan& plan) {
    ossl::Certificate certificate = ossl::made(ossl::Certificate(X509_new()));
    X509& issuer = plan.issuer != nullptr ? *plan.issuer : *certificate;
    need(X509_set_version(certificate.get(), X509_VERSION_3), "Setting the version");
    set_serial(*certificate);
    need(X509_set_subject_name(certificate.get(), &plan.subject), "Setting the subject");
    need(X509_set_issuer_name(certificate.get(), X509_get_subject_name(&issuer)), "Setting the issuer");
    set_validity(*certificate, plan.validity);
    need(X509_set_pubkey(certificate.get(), &plan.subject_key), "Setting the key");
    add_extensions(*certificate, issuer, plan.kind.extensions);
    if (X509_sign(certificate.get(), &plan.signing_key, EVP_sha256()) == 0)
        fail_with_openssl_reason("Signing the certificate");
    return certificate;
}

} // namespace simcard
