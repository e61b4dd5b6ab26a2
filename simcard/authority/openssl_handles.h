#pragma once

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/cms.h>
#include <openssl/conf.h>
#include <openssl/evp.h>
#include <openssl/pkcs7.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>

#include <memory>

// Owners of OpenSSL objects: each releases what it holds when it goes out of scope.
namespace simcard {

template <auto release> struct Releaser {
    template <class Object> void operator()(Object* object) const noexcept { release(object); }
};

using Bio = std::unique_ptr<BIO, Releaser<BIO_free_all>>;
using BigNumber = std::unique_ptr<BIGNUM, Releaser<BN_clear_free>>;
using CmsMessage = std::unique_ptr<CMS_ContentInfo, Releaser<CMS_ContentInfo_free>>;
using Configuration = std::unique_ptr<CONF, Releaser<NCONF_free>>;
using PrivateKey = std::unique_ptr<EVP_PKEY, Releaser<EVP_PKEY_free>>;
using Pkcs7Bundle = std::unique_ptr<PKCS7, Releaser<PKCS7_free>>;
using Certificate = std::unique_ptr<X509, Releaser<X509_free>>;
using CertificateRequest = std::unique_ptr<X509_REQ, Releaser<X509_REQ_free>>;
using DistinguishedName = std::unique_ptr<X509_NAME, Releaser<X509_NAME_free>>;
using TrustStore = std::unique_ptr<X509_STORE, Releaser<X509_STORE_free>>;
using TrustCheck = std::unique_ptr<X509_STORE_CTX, Releaser<X509_STORE_CTX_free>>;

} // namespace simcard
