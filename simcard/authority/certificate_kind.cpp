#include "simcard/authority/certificate_kind.h"

#include "simcard/authority/errors.h"

#include <array>
#include <openssl/x509v3.h>

namespace simcard {
namespace {

// The policies stand under 2.999, the arc that is set aside for examples.
constexpr std::array<CertificateKind, 2> kinds{{
    {"signature", KU_NON_REPUDIATION, R"(
[extensions]
subjectKeyIdentifier = hash
authorityKeyIdentifier = keyid:always
keyUsage = critical, nonRepudiation
certificatePolicies = @policy
[policy]
policyIdentifier = 2.999.1.1
CPS.1 = https://korvalenta.example/cps
userNotice.1 = @notice
[notice]
explicitText = UTF8:Certificato di firma dimostrativo, senza valore legale
)"},
    {"authentication", KU_DIGITAL_SIGNATURE, R"(
[extensions]
subjectKeyIdentifier = hash
authorityKeyIdentifier = keyid:always
keyUsage = critical, digitalSignature
extendedKeyUsage = clientAuth
certificatePolicies = @policy
[policy]
policyIdentifier = 2.999.1.2
CPS.1 = https://korvalenta.example/cps
userNotice.1 = @notice
[notice]
explicitText = UTF8:Certificato di autenticazione dimostrativo, senza valore legale
)"},
}};

constexpr CertificateKind authority{"authority", KU_KEY_CERT_SIGN, R"(
[extensions]
subjectKeyIdentifier = hash
basicConstraints = critical, CA:TRUE, pathlen:0
keyUsage = critical, keyCertSign, cRLSign
)"};

} // namespace

std::span<const CertificateKind> holder_kinds() {
    return kinds;
}

const CertificateKind& authority_kind() {
    return authority;
}

const CertificateKind& kind_named(std::string_view name) {
    for (const CertificateKind& kind : kinds)
        if (kind.name == name) return kind;
    throw Refusal("There is no kind of certificate named \"" + std::string(name) + "\".");
}

const CertificateKind& kind_of(X509& certificate) {
    const std::uint32_t usage = X509_get_key_usage(&certificate);
    if (usage != UINT32_MAX)
        for (const CertificateKind& kind : kinds)
            if ((usage & kind.key_usage) != 0) return kind;
    throw Refusal("The certificate's key usage is neither signature nor authentication.");
}

} // namespace simcard
