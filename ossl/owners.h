#pragma once

#include <openssl/asn1.h>
#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/cms.h>
#include <openssl/conf.h>
#include <openssl/evp.h>
#include <openssl/pkcs7.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

#include <memory>
#include <stdexcept>

// Owners of OpenSSL's objects: each releases what it holds when it goes out of scope.
namespace ossl {

template <auto release> struct Releaser {
    template <class Object> void operator()(Object* object) const noexcept { release(object); }
};
template <class Object, auto release> using Owner = std::unique_ptr<Object, Releaser<release>>;

using Bio = Owner<BIO, BIO_free_all>;
using BigNumber = Owner<BIGNUM, BN_clear_free>;
using Bundle = Owner<PKCS7, PKCS7_free>;
using Certificate = Owner<X509, X509_free>;
using Configuration = Owner<CONF, NCONF_free>;
using DigestContext = Owner<EVP_MD_CTX, EVP_MD_CTX_free>;
using Key = Owner<EVP_PKEY, EVP_PKEY_free>;
using KeyContext = Owner<EVP_PKEY_CTX, EVP_PKEY_CTX_free>;
using Message = Owner<CMS_ContentInfo, CMS_ContentInfo_free>;
using Name = Owner<X509_NAME, X509_NAME_free>;
using Request = Owner<X509_REQ, X509_REQ_free>;
using String = Owner<ASN1_STRING, ASN1_STRING_free>;
using Time = Owner<ASN1_TIME, ASN1_TIME_free>;
using TrustCheck = Owner<X509_STORE_CTX, X509_STORE_CTX_free>;
using TrustStore = Owner<X509_STORE, X509_STORE_free>;

inline void free_certificates(STACK_OF(X509) * certificates) {
    sk_X509_pop_free(certificates, X509_free);
}
using Certificates = Owner<STACK_OF(X509), free_certificates>;

// Passes on an object that OpenSSL made; none at all means that memory ran out.
template <class Made> [[nodiscard]] Made made(Made owner) {
    if (!owner) throw std::runtime_error("OpenSSL ran out of memory.");
    return owner;
}

} // namespace ossl
