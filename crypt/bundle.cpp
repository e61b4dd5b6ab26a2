#include "bundle.h"

#include "certificate.h"
#include "failure.h"

#include <algorithm>

namespace zvcrypt {
namespace {

CmsPtr readSignedData(const Bytes& der) {
    const unsigned char* end = der.data();
    CmsPtr bundle(d2i_CMS_ContentInfo(nullptr, &end, static_cast<long>(der.size())));
    const bool whole = bundle && end == der.data() + der.size();
    return whole && OBJ_obj2nid(CMS_get0_type(bundle.get())) == NID_pkcs7_signed ? std::move(bundle)
                                                                                 : nullptr;
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
    auto certificate = readCertificate(der, Trailing::refused);
    if (!certificate) throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il certificato non è leggibile");
    certificates.push_back(std::move(certificate));
}

void addBundle(const Bytes& der, std::vector<X509Ptr>& certificates) {
    const auto bundle = readSignedData(der);
    if (!bundle) throw Failure(ZVC_ERR_TEXT_FORM, "La busta PKCS#7 dei certificati non è leggibile");
    addCertificatesOf(*bundle, certificates);
}

void addCertificateOrBundle(const Bytes& der, std::vector<X509Ptr>& certificates) {
    if (auto certificate = readCertificate(der, Trailing::refused))
        certificates.push_back(std::move(certificate));
    else if (const auto bundle = readSignedData(der))
        addCertificatesOf(*bundle, certificates);
    else
        throw Failure(ZVC_ERR_TEXT_FORM, "Il testo non contiene un certificato né una busta PKCS#7");
}

const X509& holderCertificate(const std::vector<X509Ptr>& certificates) {
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
    if (holder == nullptr)
        throw Failure(ZVC_ERR_NO_HOLDER, "Il testo non contiene il certificato di un titolare");
    return **holder;
}

} // namespace zvcrypt
