#include "simcard/authority/build_certificate.h"

#include "ossl/memory_bio.h"
#include "simcard/authority/errors.h"

#include <openssl/x509v3.h>

namespace simcard {
namespace {

// 16 bytes. Every other one has its top bit set, and so begins with a byte of zero in the certificate.
constexpr int SERIAL_BITS = 128;

using Extension = ossl::Owner<X509_EXTENSION, X509_EXTENSION_free>;

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

void replace_extension(X509& certificate, X509& issuer, int nid, const char* value) {
    const int place = X509_get_ext_by_NID(&certificate, nid, -1);
    if (place < 0) return;
    X509_EXTENSION_free(X509_delete_ext(&certificate, place));
    X509V3_CTX context{};
    X509V3_set_ctx(&context, &issuer, &certificate, nullptr, nullptr, 0);
    const Extension extension = ossl::made(Extension(X509V3_EXT_conf_nid(nullptr, &context, nid, value)));
    need(X509_add_ext(&certificate, extension.get(), place), "Replacing an extension");
}

void make_unknown_extensions_harmless(X509& certificate) {
    for (int place = 0; place < X509_get_ext_count(&certificate); ++place)
        if (X509_EXTENSION* extension = X509_get_ext(&certificate, place);
            X509_supported_extension(extension) == 0)
            need(X509_EXTENSION_set_critical(extension, 0), "Changing an extension");
}

void sign(X509& certificate, EVP_PKEY& key) {
    if (X509_sign(&certificate, &key, EVP_sha256()) == 0) fail_with_openssl_reason("Signing the certificate");
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
    sign(*certificate, plan.signing_key);
    return certificate;
}

ossl::Certificate copy_certificate(X509& original, EVP_PKEY& subject_key, X509& issuer,
                                   EVP_PKEY& signing_key) {
    ossl::Certificate certificate = ossl::made(ossl::Certificate(X509_dup(&original)));
    need(X509_set_issuer_name(certificate.get(), X509_get_subject_name(&issuer)), "Setting the issuer");
    need(X509_set_pubkey(certificate.get(), &subject_key), "Setting the key");
    replace_extension(*certificate, issuer, NID_subject_key_identifier, "hash");
    replace_extension(*certificate, issuer, NID_authority_key_identifier, "keyid:always");
    make_unknown_extensions_harmless(*certificate);
    sign(*certificate, signing_key);
    return certificate;
}

} // namespace simcard
