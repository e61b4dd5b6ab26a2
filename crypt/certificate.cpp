#include "crypt/certificate.h"

#include "crypt/failure.h"
#include "crypt/keyless.h"
#include "lenient/mended.h"

namespace zvcrypt {
namespace {

using AnyPtr = ossl::Owner<ASN1_TYPE, ASN1_TYPE_free>;

Certificate parsed(der::Span whole) {
    const Bytes readable = lenient::mended(whole);
    const unsigned char* end = readable.data();
    auto* made = reinterpret_cast<ASN1_VALUE*>(X509_new_ex(keyless(), nullptr));
    // Takes the object along when it fails. d2i_X509 would look for a digest besides, in some versions.
    (void)ASN1_item_d2i(&made, &end, static_cast<long>(readable.size()), ASN1_ITEM_rptr(X509));
    return {Bytes(whole.begin(), whole.end()), ossl::Certificate(reinterpret_cast<X509*>(made))};
}

// What is signed is the bytes that were issued.
bool is_signed_by(const Certificate& certificate, EVP_PKEY* key) {
    const auto body = certificate.parts().body;
    const unsigned char* end = body.data();
    const AnyPtr whole(d2i_ASN1_TYPE(nullptr, &end, static_cast<long>(body.size())));
    const ASN1_BIT_STRING* signature = nullptr;
    const X509_ALGOR* algorithm = nullptr;
    X509_get0_signature(&signature, &algorithm, certificate.x509.get());
    return whole != nullptr && key != nullptr &&
           X509_ALGOR_cmp(algorithm, X509_get0_tbs_sigalg(certificate.x509.get())) == 0 &&
           ASN1_item_verify(ASN1_ITEM_rptr(ASN1_ANY), algorithm, signature, whole.get(), key) == 1;
}

// An RSA key's two numbers: read in a hundredth of the time that OpenSSL takes to try all its decoders. Null for others.
ossl::Key rsa_key(const X509* certificate) {
    ASN1_OBJECT* algorithm = nullptr;
    const unsigned char* numbers = nullptr;
    int size = 0;
    const X509_PUBKEY* key = X509_get_X509_PUBKEY(certificate);
    const bool readable = X509_PUBKEY_get0_param(&algorithm, &numbers, &size, nullptr, key) == 1;
    if (!readable || OBJ_obj2nid(algorithm) != NID_rsaEncryption) return nullptr;
    return ossl::Key(d2i_PublicKey(EVP_PKEY_RSA, nullptr, &numbers, size));
}

} // namespace

EVP_PKEY* Certificate::key() const {
    if (decoded != nullptr || x509 == nullptr) return decoded.get();
    decoded = rsa_key(x509.get());
    if (decoded != nullptr) return decoded.get();
    const Bytes readable = lenient::mended(parts().public_key);
    const unsigned char* end = readable.data();
    decoded.reset(d2i_PUBKEY(nullptr, &end, static_cast<long>(readable.size())));
    return decoded.get();
}

Certificate read_certificate(std::span<const unsigned char> der) {
    try {
        return parsed(take_apart(der).whole);
    } catch (const Failure&) {
        return {};
    }
}

Certificate require_certificate(std::span<const unsigned char> der) {
    auto certificate = parsed(take_apart(der).whole);
    if (!certificate) throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il certificato non è leggibile");
    return certificate;
}

bool is_issued_by(const Certificate& certificate, const Certificate& issuer) {
    return X509_NAME_cmp(X509_get_issuer_name(certificate.x509.get()),
                         X509_get_subject_name(issuer.x509.get())) == 0 &&
           is_signed_by(certificate, issuer.key());
}

} // namespace zvcrypt
