#include "simcard/authority/signed_request.h"

#include "ossl/memory_bio.h"
#include "simcard/authority/errors.h"
#include "simcard/authority/keys.h"
#include "simcard/authority/name.h"
#include "simcard/authority/request_encoding.h"

#include <openssl/err.h>
#include <openssl/objects.h>
#include <openssl/x509v3.h>

#include <array>

namespace simcard {
namespace {

// Refuses with that sentence; OpenSSL's own reasons are of no use to the sender and must not linger.
void require(bool right, const char* otherwise) {
    if (right) return;
    ERR_clear_error();
    throw Refusal(otherwise);
}

// Signing a request needs no particular extended key usage, and a holder may renew late: what counts is that
// the certificate comes from this authority.
ossl::TrustStore trusting(X509& authority) {
    ossl::TrustStore store = ossl::made(ossl::TrustStore(X509_STORE_new()));
    require(X509_STORE_add_cert(store.get(), &authority) == 1, "The authority's certificate cannot be used.");
    X509_VERIFY_PARAM* rules = X509_STORE_get0_param(store.get());
    X509_VERIFY_PARAM_set_flags(rules, X509_V_FLAG_NO_CHECK_TIME);
    X509_VERIFY_PARAM_set_purpose(rules, X509_PURPOSE_ANY);
    return store;
}

CMS_SignerInfo& only_signer(CMS_ContentInfo& message) {
    require(OBJ_obj2nid(CMS_get0_type(&message)) == NID_pkcs7_signed, "The request is not a signed message.");
    STACK_OF(CMS_SignerInfo)* signers = CMS_get0_SignerInfos(&message);
    require(sk_CMS_SignerInfo_num(signers) == 1, "The request must have exactly one signer.");
    return *sk_CMS_SignerInfo_value(signers, 0);
}

void check_signed_attributes(CMS_SignerInfo& signer) {
    for (const int wanted :
         {NID_pkcs9_contentType, NID_pkcs9_messageDigest, NID_id_smime_aa_signingCertificateV2})
        require(CMS_signed_get_attr_by_NID(&signer, wanted, -1) >= 0,
                "The signature lacks a signed attribute (content type, message digest or "
                "signing-certificate-v2).");
}

X509& certificate_of_signer(CMS_ContentInfo& message, CMS_SignerInfo& signer) {
    X509* certificate = nullptr;
    CMS_set1_signers_certs(&message, nullptr, 0);
    CMS_SignerInfo_get0_algs(&signer, nullptr, &certificate, nullptr, nullptr);
    require(certificate != nullptr, "The message does not carry its signer's certificate.");
    return *certificate;
}

void check_issued_by(X509_STORE& store, X509& certificate) {
    const ossl::TrustCheck check = ossl::made(ossl::TrustCheck(X509_STORE_CTX_new()));
    require(X509_STORE_CTX_init(check.get(), &store, &certificate, nullptr) == 1 &&
                X509_verify_cert(check.get()) == 1,
            "The signer's certificate was not issued by this authority.");
}

std::string verified_content(CMS_ContentInfo& message, X509_STORE& store) {
    require(OBJ_obj2nid(CMS_get0_eContentType(&message)) == NID_pkcs7_data && CMS_is_detached(&message) == 0,
            "The signed message carries no request.");
    const ossl::Bio content = ossl::writing();
    require(CMS_verify(&message, nullptr, &store, nullptr, content.get(), CMS_BINARY | CMS_CADES) == 1,
            "The signature of the message is wrong, or its content was altered.");
    return std::string(ossl::written(*content));
}

std::vector<std::string> notices_about(X509& signer) {
    if (X509_cmp_current_time(X509_get0_notAfter(&signer)) > 0) return {};
    return {"The signer's certificate (" + value_in_name(*X509_get_subject_name(&signer), NID_commonName) +
            ") has expired."};
}

} // namespace

VerifiedRequest verify_bare_request(ossl::Request request) {
    EVP_PKEY* key = X509_REQ_get0_pubkey(request.get());
    require(key != nullptr && EVP_PKEY_is_a(key, "RSA") &&
                EVP_PKEY_get_bits(key) >= static_cast<int>(KEY_BITS),
            "The key in the request is not RSA of 2048 bits or more.");
    require(X509_REQ_verify(request.get(), key) == 1,
            "The request is not signed by the key that it carries.");
    return {std::move(request), nullptr, {}};
}

VerifiedRequest verify_signed_request(CMS_ContentInfo& message, X509& authority) {
    const ossl::TrustStore store = trusting(authority);
    CMS_SignerInfo& signer = only_signer(message);
    check_signed_attributes(signer);
    X509& certificate = certificate_of_signer(message, signer);
    check_issued_by(*store, certificate);
    const std::string content = verified_content(message, *store);
    VerifiedRequest verified = verify_bare_request(decode_pem_request(content));
    X509_up_ref(&certificate);
    verified.signer.reset(&certificate);
    verified.notices = notices_about(certificate);
    return verified;
}

} // namespace simcard
