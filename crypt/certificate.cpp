#include "certificate.h"

#include "certificate_parts.h"
#include "failure.h"

namespace zvcrypt {
namespace {

X509Ptr parsed(der::Span certificate) {
    const unsigned char* end = certificate.data();
    return X509Ptr(d2i_X509(nullptr, &end, static_cast<long>(certificate.size())));
}

} // namespace

X509Ptr readCertificate(std::span<const unsigned char> der) {
    try {
        return parsed(takeApart(der).whole);
    } catch (const Failure&) {
        return nullptr;
    }
}

X509Ptr requireCertificate(const unsigned char* der, unsigned long length) {
    auto certificate = parsed(takeApart({der, length}).whole);
    if (!certificate) throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il certificato non è leggibile");
    return certificate;
}

Bytes certificateDer(const X509& certificate) {
    return der::encoded(i2d_X509, &certificate);
}

bool isIssuedBy(X509& certificate, X509& issuer) {
    return X509_NAME_cmp(X509_get_issuer_name(&certificate), X509_get_subject_name(&issuer)) == 0 &&
           X509_verify(&certificate, X509_get0_pubkey(&issuer)) == 1;
}

} // namespace zvcrypt
