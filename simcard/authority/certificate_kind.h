#pragma once

#include <cstdint>
#include <openssl/x509.h>
#include <span>
#include <string_view>

namespace simcard {

/// What a certificate is for, and the extensions that say so. The kinds are a table: see
/// certificate_kind.cpp.
struct CertificateKind {
    const char* name;
    /// Key usage bits (KU_... of OpenSSL) by which a certificate of this kind is recognised.
    std::uint32_t key_usage;
    /// OpenSSL configuration text; its section "extensions" is what a certificate of this kind carries.
    const char* extensions;
};

/// The kinds that a card's holder can be given: "signature" and "authentication".
[[nodiscard]] std::span<const CertificateKind> holder_kinds();

/// The authority's own.
[[nodiscard]] const CertificateKind& authority_kind();

/// The holder's kind of that name. @throws Refusal when there is none.
[[nodiscard]] const CertificateKind& kind_named(std::string_view name);

/// The kind of an issued certificate, by its key usage. @throws Refusal when it is of none.
[[nodiscard]] const CertificateKind& kind_of(X509& certificate);

} // namespace simcard
