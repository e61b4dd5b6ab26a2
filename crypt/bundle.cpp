#include "bundle.h"

#include "certificate.h"
#include "certificate_parts.h"
#include "failure.h"

#include <algorithm>

namespace zvcrypt {
namespace {

bool startsAsCertificate(const Bytes& der) {
    try {
        (void)takeApart(der);
        return true;
    } catch (const Failure&) {
        return false;
    }
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

// One that stands alone must say, too, that it signs others: tools call what they make for a holder an
// authority's.
bool isAuthority(X509& certificate, bool alone) {
    const auto flags = X509_get_extension_flags(&certificate);
    const bool signsOthers =
        (flags & EXFLAG_KUSAGE) != 0 && (X509_get_key_usage(&certificate) & KU_KEY_CERT_SIGN) != 0;
    return (flags & EXFLAG_CA) != 0 && (signsOthers || !alone);
}

bool isSame(const X509Ptr& one, const X509Ptr& other) {
    return X509_cmp(one.get(), other.get()) == 0;
}

} // namespace

void addCertificate(const Bytes& der, std::vector<X509Ptr>& certificates) {
    if (takeApart(der).whole.size() != der.size())
        throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il certificato è seguito da altri dati");
    certificates.push_back(requireCertificate(der.data(), der.size()));
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
    if (startsAsCertificate(der))
        addCertificate(der, certificates);
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
        if (isAuthority(*one, certificates.size() == 1) || issuedAnother ||
            (holder != nullptr && isSame(one, *holder)))
            continue;
        if (holder != nullptr)
            throw Failure(ZVC_ERR_TWO_HOLDERS, "Il testo contiene i certificati di più titolari");
        holder = &one;
    }
    if (holder == nullptr) throw Failure(ZVC_ERR_NO_HOLDER, "Il testo contiene solo certificati di autorità");
    return **holder;
}

} // namespace zvcrypt
