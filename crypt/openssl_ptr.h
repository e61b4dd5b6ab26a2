#pragma once

#include <openssl/asn1.h>
#include <openssl/cms.h>
#include <openssl/evp.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <memory>
#include <vector>

namespace zvcrypt {

using Bytes = std::vector<unsigned char>;

template <auto free> struct OpensslDeleter {
    template <class T> void operator()(T* object) const noexcept { free(object); }
};
template <class T, auto free> using OpensslPtr = std::unique_ptr<T, OpensslDeleter<free>>;

using X509Ptr = OpensslPtr<X509, X509_free>;
using CmsPtr = OpensslPtr<CMS_ContentInfo, CMS_ContentInfo_free>;
using MdContextPtr = OpensslPtr<EVP_MD_CTX, EVP_MD_CTX_free>;
using TimePtr = OpensslPtr<ASN1_TIME, ASN1_TIME_free>;

inline void free_certificates(STACK_OF(X509) * certificates) {
    sk_X509_pop_free(certificates, X509_free);
}
using X509StackPtr = OpensslPtr<STACK_OF(X509), free_certificates>;

} // namespace zvcrypt
