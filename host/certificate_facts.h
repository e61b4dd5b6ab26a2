#pragma once

#include "host/distinguished_name.h"
#include "host/kind.h"

#include <openssl/x509.h>

#include <ctime>
#include <optional>
#include <string>
#include <vector>

namespace zvhost {

// The subject as the certificate itself has it, attributes that requests do not carry included.
[[nodiscard]] DistinguishedName subject_of(const X509& certificate);

[[nodiscard]] DistinguishedName issuer_of(const X509& certificate);

// When a certificate begins and ends; none when the date cannot be read.
[[nodiscard]] std::optional<std::time_t> begin_of(const X509& certificate);
[[nodiscard]] std::optional<std::time_t> end_of(const X509& certificate);

// The serial number as the library's records have it. Takes DER.
[[nodiscard]] std::string serial_of(std::vector<unsigned char> der);

// Says what a certificate of a kind needs to be for and this one is not, by the name of the key usage; empty
// when it is for that. One without key usages is for everything.
[[nodiscard]] std::string missing_usage(X509& certificate, Kind kind);

} // namespace zvhost
