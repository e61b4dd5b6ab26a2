#pragma once

#include "ossl/owners.h"

#include <filesystem>
#include <string>

namespace simcard {

enum class CertificateForm { pem, der };

[[nodiscard]] std::string certificate_text(X509& certificate, CertificateForm form);

// A PKCS#7 bundle, nothing signed, that carries the certificate and its issuer's.
[[nodiscard]] std::string bundle_text(X509& certificate, X509& issuer, CertificateForm form);

// Reads one certificate in PEM. @throws Refusal when the file holds none.
[[nodiscard]] ossl::Certificate read_certificate(const std::filesystem::path& path);

} // namespace simcard
