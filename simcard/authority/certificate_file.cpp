#include "simcard/authority/certificate_file.h"

#include "ossl/memory_bio.h"
#include "simcard/authority/errors.h"
#include "simcard/authority/files.h"

#include <openssl/err.h>
#include <openssl/objects.h>
#include <openssl/pem.h>

namespace simcard {
namespace {

// Collects what `write` puts out; a result other than 1 is OpenSSL's way of saying that it could not.
template <class Write> std::string collect(Write write) {
    const ossl::Bio target = ossl::writing();
    if (write(target.get()) != 1) fail_with_openssl_reason("Encoding the certificate");
    return std::string(ossl::written(*target));
}

} // namespace

std::string certificate_text(X509& certificate, CertificateForm form) {
    return collect([&](BIO* target) {
        return form == CertificateForm::pem ? PEM_write_bio_X509(target, &certificate)
                                            : i2d_X509_bio(target, &certificate);
    });
}

std::string bundle_text(X509& certificate, X509& issuer, CertificateForm form) {
    const ossl::Bundle bundle = ossl::made(ossl::Bundle(PKCS7_new()));
    if (PKCS7_set_type(bundle.get(), NID_pkcs7_signed) != 1 ||
        PKCS7_content_new(bundle.get(), NID_pkcs7_data) != 1 || PKCS7_set_detached(bundle.get(), 1) != 1 ||
        PKCS7_add_certificate(bundle.get(), &certificate) != 1 ||
        PKCS7_add_certificate(bundle.get(), &issuer) != 1)
        fail_with_openssl_reason("Bundling the certificates");
    return collect([&](BIO* target) {
        return form == CertificateForm::pem ? PEM_write_bio_PKCS7(target, bundle.get())
                                            : i2d_PKCS7_bio(target, bundle.get());
    });
}

ossl::Certificate read_certificate(const std::filesystem::path& path) {
    const std::string text = read_file(path);
    const ossl::Bio source = ossl::reading(text);
    ossl::Certificate certificate(PEM_read_bio_X509(source.get(), nullptr, nullptr, nullptr));
    ERR_clear_error();
    if (!certificate) throw Refusal(path.string() + " holds no certificate in PEM.");
    return certificate;
}

} // namespace simcard
