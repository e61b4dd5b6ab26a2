#include "crypt/bundle.h"

#include "crypt/failure.h"
#include "crypt/keyless.h"
#include "lenient/mended.h"
#include "ossl/owners.h"

#include <algorithm>
#include <cstdint>

namespace zvcrypt {
namespace {

using UsagePtr = ossl::Owner<ASN1_BIT_STRING, ASN1_BIT_STRING_free>;

bool starts_as_certificate(const Bytes& der) {
    try {
        (void)take_apart(der);
        return true;
    } catch (const Failure&) {
        return false;
    }
}

// Null when the bytes do not start as such a bundle.
ossl::Message read_only_bundle(const Bytes& der) {
    const unsigned char* end = der.data();
    CMS_ContentInfo* made = CMS_ContentInfo_new_ex(keyless(), nullptr);
    (void)d2i_CMS_ContentInfo(&made, &end, static_cast<long>(der.size())); // frees it when it fails
    ossl::Message bundle(made);
    if (!bundle || OBJ_obj2nid(CMS_get0_type(bundle.get())) != NID_pkcs7_signed) return nullptr;
    if (end != der.data() + der.size())
        throw Failure(ZVC_ERR_TEXT_FORM, "La busta PKCS#7 dei certificati è seguita da altri dati");
    return bundle;
}

// A copy that OpenSSL has is that of the readable bytes; of those the certificate's own stand at the same place.
void add_certificates_of(CMS_ContentInfo& bundle, const Bytes& der, const Bytes& readable,
                         std::vector<Certificate>& certificates) {
    const ossl::Certificates stack(CMS_get1_certs(&bundle));
    for (int i = 0; i < sk_X509_num(stack.get()); ++i) {
        const Bytes copy = der::encoded(i2d_X509, static_cast<const X509*>(sk_X509_value(stack.get(), i)));
        const auto found = std::search(readable.begin(), readable.end(), copy.begin(), copy.end());
        const auto at = static_cast<std::size_t>(found - readable.begin());
        if (found == readable.end() && der != readable)
            throw Failure(ZVC_ERR_TEXT_FORM, "I certificati nella busta PKCS#7 non sono leggibili");
        if (found != readable.end())
            certificates.push_back(require_certificate(der::Span(der).subspan(at, copy.size())));
        else // in a form that allows others, OpenSSL's is as good
            certificates.push_back(require_certificate(copy));
    }
}

// Of a certificate with a broken extension nothing is believed.
bool signs_certificates(const X509& certificate, std::uint32_t flags) {
    constexpr int key_cert_sign = 5; // bit of the extension
    const UsagePtr usage((flags & EXFLAG_INVALID) == 0 ? static_cast<ASN1_BIT_STRING*>(X509_get_ext_d2i(
                                                             &certificate, NID_key_usage, nullptr, nullptr))
                                                       : nullptr);
    return usage != nullptr && ASN1_BIT_STRING_get_bit(usage.get(), key_cert_sign) == 1;
}

// One that stands alone must say, too, that it signs others: tools call what they make for a holder an
// authority's.
bool is_authority(const Certificate& certificate, bool alone) {
    const auto flags = X509_get_extension_flags(certificate.x509.get());
    return (flags & EXFLAG_CA) != 0 && (!alone || signs_certificates(*certificate.x509, flags));
}

bool is_same(const Certificate& one, const Certificate& other) {
    return one.der == other.der;
}

} // namespace

void add_certificate(const Bytes& der, std::vector<Certificate>& certificates) {
    if (take_apart(der).whole.size() != der.size())
        throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il certificato è seguito da altri dati");
    certificates.push_back(require_certificate(der));
}

void add_trusted_certificate(const Bytes& der, std::vector<Certificate>& certificates) {
    const Bytes readable = lenient::mended(der);
    const unsigned char* end = readable.data();
    const ossl::Certificate certificate(d2i_X509_AUX(nullptr, &end, static_cast<long>(readable.size())));
    if (!certificate || end != readable.data() + readable.size())
        throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il certificato di tipo TRUSTED non è leggibile");
    certificates.push_back(require_certificate(der));
}

void add_bundle(const Bytes& der, std::vector<Certificate>& certificates) {
    const Bytes readable = lenient::mended(der);
    const auto bundle = read_only_bundle(readable);
    if (!bundle) throw Failure(ZVC_ERR_TEXT_FORM, "La busta PKCS#7 dei certificati non è leggibile");
    add_certificates_of(*bundle, der, readable, certificates);
}

void add_certificate_or_bundle(const Bytes& der, std::vector<Certificate>& certificates) {
    if (starts_as_certificate(der)) return add_certificate(der, certificates);
    const Bytes readable = lenient::mended(der);
    const auto bundle = read_only_bundle(readable);
    if (!bundle)
        throw Failure(ZVC_ERR_TEXT_FORM, "Il testo non contiene un certificato né una busta PKCS#7 interi");
    add_certificates_of(*bundle, der, readable, certificates);
}

const Certificate& holder_certificate(const std::vector<Certificate>& certificates) {
    if (certificates.empty()) throw Failure(ZVC_ERR_TEXT_FORM, "Il testo non contiene nessun certificato");
    const Certificate* holder = nullptr;
    for (const auto& one : certificates) {
        const bool issued_another =
            std::any_of(certificates.begin(), certificates.end(), [&](const Certificate& other) {
                return !is_same(one, other) && is_issued_by(other, one);
            });
        if (is_authority(one, certificates.size() == 1) || issued_another ||
            (holder != nullptr && is_same(one, *holder)))
            continue;
        if (holder != nullptr)
            throw Failure(ZVC_ERR_TWO_HOLDERS, "Il testo contiene i certificati di più titolari");
        holder = &one;
    }
    if (holder == nullptr) throw Failure(ZVC_ERR_NO_HOLDER, "Il testo contiene solo certificati di autorità");
    return *holder;
}

} // namespace zvcrypt
