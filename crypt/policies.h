#pragma once

#include "crypt/certificate_parts.h"

#include <string>
#include <vector>

namespace zvcrypt {

// Both give nothing for a certificate without policies; policies that cannot be read are
// ZVC_ERR_BAD_CERTIFICATE.
[[nodiscard]] std::vector<std::string> policy_identifiers(const CertificateParts& certificate);

// The first explicit text of a user notice.
[[nodiscard]] std::string explicit_text(const CertificateParts& certificate);

} // namespace zvcrypt
