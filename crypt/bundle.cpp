#include "bundle.h"

#include "certificate.h"
#include "failure.h"

#include <algorithm>

namespace zvcrypt {
namespace {

// Null when the bytes do not start as a certificate.
X509Ptr readOnlyCertificate(const Bytes& der) {
    auto certificate = readCertificate(der, Trailing::refused);
    if (!certificate && readCertificate(der, Trailing::ignored))
        throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il certificato è seguito da altri dati");
    return certificate;
}

// Null when the bytes do not start as such a bundle.
CmsPtr readOnlyBundle(const Bytes& der) {
    const unsigned char* end = der.data();
    CmsPtr bundle(d2i_CMS_ContentInfo(nullptr, &end, static_cast<long>(der.size())));
    if (!bundle || OBJ_obj2nid(CMS_get0_type(bundle.get())) != NID_pkcs7_signed) return nullptr;
    if (end != der.data() + der.size())
        throw Failure(ZVC_ERR_TEXT_FORM, "La busta PKCS#7 dei certificati è seguita da altri dati");
    return bundle;
}

void addCertificatesOf(CMS_ContentInfo& bundle, std::vector<X509Ptr>& certificates) {
    const X509StackPtr stack(CMS_get1_certs(&bundle));
    for (int i = 0; i < sk_X509_num(stack.get()); ++i) {
        X509* certificate = sk_X509_value(stack.get(), i);
        if (X509_up_ref(certificate) == 1) certificates.emplace_back(certificate);
    }
}

bool isAuthority(X509& certificate) {
    return (X509_get_extension_flags(&certificate) & EXFLAG_CA) != 0;
}

bool isSame(const X509Ptr& one, const X509Ptr& other) {
    return X509_cmp(one.get(), other.get()) == 0;
}

} // namespace

void addCertificate(const Bytes& der, std::vector<X509Ptr>& certificates) {
    auto certificate = readOnlyCertificate(der);
    if (!certificate) {
        (void)requireCertificate(der.data(), der.size()); // has the reason, if there is one to tell
        throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il certificato non è leggibile");
    }
    certificates.push_back(std::move(certificate));
}

void addTrustedCertificate(const Bytes& der, std::vector<X509Ptr>& certificates) {
    const unsigned char* end = der.data();
    X509Ptr certificate(d2i_X509_AUX(nullptr, &end, static_cast<long>(der.size())));
    if (!certificate || end != der.data() + der.size())
        throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il certificato di tipo TRUSTED non è leggibile");
    addCertificate(certificateDer(*certificate), certificates);
}

void addBundle(const Bytes& der, std::vector<X509Ptr>& certificates) {
    const auto bundle = readOnlyBundle(der);
    if (!bundle) throw Failure(ZVC_ERR_TEXT_FORM, "La busta PKCS#7 dei certificati non è leggibile");
    addCertificatesOf(*bundle, certificates);
}

void addCertificateOrBundle(const Bytes& der, std::vector<X509Ptr>& certificates) {
    if (auto certificate = readOnlyCertificate(der))
        certificates.push_back(std::move(certificate));
    else if (const auto bundle = readOnlyBundle(der))
        addCertificatesOf(*bundle, certificates);
    else
        throw Failure(ZVC_ERR_TEXT_FORM, "Il testo non contiene un certificato né una busta PKCS#7 interi");
}

const X509& holderCertificate(const std::vector<X509Ptr>& certificates) {
    if (certificates.empty()) throw Failure(ZVC_ERR_TEXT_FORM, "Il testo non contiene nessun certificato");
    const X509Ptr* holder = nullptr;
    for (const auto& one : certificates) {
        const bool issuedAnother =
            std::any_of(certificates.begin(), certificates.end(), [&](const X509Ptr& other) {
                return !isSame(one, other) && isIssuedBy(*other, *one);
            });
        if (isAuthority(*one) || issuedAnother || (holder != nullptr && isSame(one, *holder))) continue;
        if (holder != nullptr)
            throw Failure(ZVC_ERR_TWO_HOLDERS, "Il testo contiene i certificati di più titolari");
        holder = &one;
    }
    if (holder == nullptr) throw Failure(ZVC_ERR_NO_HOLDER, "Il testo contiene solo certificati di autorità");
    return **holder;
}

} // namespace zvcrypt
