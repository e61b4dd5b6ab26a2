#include "bundle.h"

#include "failure.h"
#include "lenient/mended.h"

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

// A copy that OpenSSL has is that of the readable bytes; of those the certificate's own stand at the same place.
void addCertificatesOf(CMS_ContentInfo& bundle, const Bytes& der, const Bytes& readable,
                       std::vector<Certificate>& certificates) {
    const X509StackPtr stack(CMS_get1_certs(&bundle));
    for (int i = 0; i < sk_X509_num(stack.get()); ++i) {
        const Bytes copy = der::encoded(i2d_X509, static_cast<const X509*>(sk_X509_value(stack.get(), i)));
        const auto found = std::search(readable.begin(), readable.end(), copy.begin(), copy.end());
        const auto at = static_cast<std::size_t>(found - readable.begin());
        if (found == readable.end() && der != readable)
            throw Failure(ZVC_ERR_TEXT_FORM, "I certificati nella busta PKCS#7 non sono leggibili");
        if (found != readable.end())
            certificates.push_back(requireCertificate(der::Span(der).subspan(at, copy.size())));
        else // in a form that allows others, OpenSSL's is as good
            certificates.push_back(requireCertificate(copy));
    }
}

// One that stands alone must say, too, that it signs others: tools call what they make for a holder an
// authority's.
bool isAuthority(const Certificate& certificate, bool alone) {
    const auto flags = X509_get_extension_flags(certificate.x509.get());
    const bool signsOthers =
        (flags & EXFLAG_KUSAGE) != 0 && (X509_get_key_usage(certificate.x509.get()) & KU_KEY_CERT_SIGN) != 0;
    return (flags & EXFLAG_CA) != 0 && (signsOthers || !alone);
}

bool isSame(const Certificate& one, const Certificate& other) {
    return one.der == other.der;
}

} // namespace

void addCertificate(const Bytes& der, std::vector<Certificate>& certificates) {
    if (takeApart(der).whole.size() != der.size())
        throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il certificato è seguito da altri dati");
    certificates.push_back(requireCertificate(der));
}

void addTrustedCertificate(const Bytes& der, std::vector<Certificate>& certificates) {
    const Bytes readable = lenient::mended(der);
    const unsigned char* end = readable.data();
    const X509Ptr certificate(d2i_X509_AUX(nullptr, &end, static_cast<long>(readable.size())));
    if (!certificate || end != readable.data() + readable.size())
        throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il certificato di tipo TRUSTED non è leggibile");
    certificates.push_back(requireCertificate(der));
}

void addBundle(const Bytes& der, std::vector<Certificate>& certificates) {
    const Bytes readable = lenient::mended(der);
    const auto bundle = readOnlyBundle(readable);
    if (!bundle) throw Failure(ZVC_ERR_TEXT_FORM, "La busta PKCS#7 dei certificati non è leggibile");
    addCertificatesOf(*bundle, der, readable, certificates);
}

void addCertificateOrBundle(const Bytes& der, std::vector<Certificate>& certificates) {
    if (startsAsCertificate(der)) return addCertificate(der, certificates);
    const Bytes readable = lenient::mended(der);
    const auto bundle = readOnlyBundle(readable);
    if (!bundle)
        throw Failure(ZVC_ERR_TEXT_FORM, "Il testo non contiene un certificato né una busta PKCS#7 interi");
    addCertificatesOf(*bundle, der, readable, certificates);
}

const Certificate& holderCertificate(const std::vector<Certificate>& certificates) {
    if (certificates.empty()) throw Failure(ZVC_ERR_TEXT_FORM, "Il testo non contiene nessun certificato");
    const Certificate* holder = nullptr;
    for (const auto& one : certificates) {
        const bool issuedAnother =
            std::any_of(certificates.begin(), certificates.end(), [&](const Certificate& other) {
                return !isSame(one, other) && isIssuedBy(other, one);
            });
        if (isAuthority(one, certificates.size() == 1) || issuedAnother ||
            (holder != nullptr && isSame(one, *holder)))
            continue;
        if (holder != nullptr)
            throw Failure(ZVC_ERR_TWO_HOLDERS, "Il testo contiene i certificati di più titolari");
        holder = &one;
    }
    if (holder == nullptr) throw Failure(ZVC_ERR_NO_HOLDER, "Il testo contiene solo certificati di autorità");
    return *holder;
}

} // namespace zvcrypt
