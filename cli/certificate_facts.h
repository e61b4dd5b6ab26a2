#pragma once

#include "cli/distinguished_name.h"

#include <ctime>
#include <openssl/x509.h>
#include <optional>

namespace cli {

/// The subject as the certificate itself has it, attributes that requests do not carry included.
[[nodiscard]] DistinguishedName subject_of(const X509& certificate);

/// When a certificate ends; none when its date cannot be read.
[[nodiscard]] std::optional<std::time_t> end_of(const X509& certificate);

} // namespace cli
