#pragma once

#include "simcard/authority/authority.h"

namespace simcard {

struct CertificatePlan {
    const X509_NAME& subject;
    EVP_PKEY& subject_key;
    const CertificateKind& kind;
    Validity validity;
    // The certificate of whoever signs; null when the certificate is its own.
    X509* issuer;
    EVP_PKEY& signing_key;
};

// Builds and signs the certificate. @throws Failure with OpenSSL's reason.
[[nodiscard]] ossl::Certificate build_certificate(const CertificatePlan& plan);

// Builds a certificate that says what another one says, for another key and by another issuer. An extension that OpenSSL
// does not know is no longer critical. @throws Failure with OpenSSL's reason.
[[nodiscard]] ossl::Certificate copy_certificate(X509& original, EVP_PKEY& subject_key, X509& issuer,
                                                 EVP_PKEY& signing_key);

} // namespace simcard
