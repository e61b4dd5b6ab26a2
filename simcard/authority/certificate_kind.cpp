#include "simcard/authority/certificate_kind.h"

#include "ossl/owners.h"
#include "simcard/authority/errors.h"

#include <openssl/x509v3.h>

#include <array>
#include <memory>
#include <string>

namespace simcard {
namespace {

// The policies stand under 2.999, the arc that is set aside for examples.
constexpr std::array<CertificateKind, 3> KINDS{{
    {"signature", "2.999.1.1", R"(
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
    {"authentication", "2.999.1.2", R"(
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
    {"cns", "2.999.1.3", R"(
[extensions]
subjectKeyIdentifier = hash
authorityKeyIdentifier = keyid:always
keyUsage = critical, digitalSignature
extendedKeyUsage = clientAuth
certificatePolicies = @policy
[policy]
policyIdentifier = 2.999.1.3
CPS.1 = https://korvalenta.example/cps
userNotice.1 = @notice
[notice]
explicitText = UTF8:Carta dei servizi dimostrativa, senza valore legale
)"},
}};

constexpr CertificateKind AUTHORITY{"authority", "", R"(
[extensions]
subjectKeyIdentifier = hash
basicConstraints = critical, CA:TRUE, pathlen:0
keyUsage = critical, keyCertSign, cRLSign
)"};

using Policies = ossl::Owner<CERTIFICATEPOLICIES, CERTIFICATEPOLICIES_free>;

// The first policy of a certificate; an empty text when it has none.
std::string policy_of(X509& certificate) {
    const Policies policies(static_cast<CERTIFICATEPOLICIES*>(
        X509_get_ext_d2i(&certificate, NID_certificate_policies, nullptr, nullptr)));
    std::array<char, 80> text{};
    if (policies && sk_POLICYINFO_num(policies.get()) > 0)
        OBJ_obj2txt(text.data(), static_cast<int>(text.size()),
                    sk_POLICYINFO_value(policies.get(), 0)->policyid, 1);
    return text.data();
}

} // namespace

std::span<const CertificateKind> holder_kinds() {
    return KINDS;
}

const CertificateKind& authority_kind() {
    return AUTHORITY;
}

const CertificateKind& kind_named(std::string_view name) {
    for (const CertificateKind& kind : KINDS)
        if (kind.name == name) return kind;
    throw Refusal("There is no kind of certificate named \"" + std::string(name) + "\".");
}

const CertificateKind& kind_of(X509& certificate) {
    const std::string policy = policy_of(certificate);
    for (const CertificateKind& kind : KINDS)
        if (policy == kind.policy) return kind;
    throw Refusal("The certificate's policy is none of this authority's.");
}

} // namespace simcard
