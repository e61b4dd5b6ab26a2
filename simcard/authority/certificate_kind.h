#pragma once

#include <openssl/x509.h>

#include <span>
#include <string_view>

namespace simcard {

// What a certificate is for, and the extensions that say so. The kinds are a table: see
// certificate_kind.cpp.
struct CertificateKind {
    const char* name;
    // Its policy in dotted form, by which a certificate of this kind is recognised; empty for none.
    const char* policy;
    // OpenSSL configuration text; its section "extensions" is what a certificate of this kind carries.
    const char* extensions;
};

// The kinds that a card's holder can be given: "signature", "authentication", and "cns" for the pair that a
// services card is made with.
[[nodiscard]] std::span<const CertificateKind> holder_kinds();

// The authority's own.
[[nodiscard]] const CertificateKind& authority_kind();

// The holder's kind of that name. @throws Refusal when there is none.
[[nodiscard]] const CertificateKind& kind_named(std::string_view name);

// The kind of an issued certificate, by its policy. @throws Refusal when it is of none.
[[nodiscard]] const CertificateKind& kind_of(X509& certificate);

} // namespace simcard
