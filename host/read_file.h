#pragma once

#include "host/certificate.h"

#include <string>
#include <vector>

namespace zvhost {

// Reads a file of at most 1 MiB. @throws Error
[[nodiscard]] std::string read_file(const std::string& path, const char* what);

// Reads every certificate of a file: PEM (certificates, PKCS#7 bundles), DER of either, or base64 of that DER
// without a frame.
//
// @throws Error when the file cannot be read or holds none.
[[nodiscard]] std::vector<Certificate> certificates_in_file(const std::string& path);

} // namespace zvhost
