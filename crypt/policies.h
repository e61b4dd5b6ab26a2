#pragma once

#include "openssl_ptr.h"

#include <string>
#include <vector>

namespace zvcrypt {

// Both give nothing for a certificate without policies; policies that cannot be read are
// ZVC_ERR_BAD_CERTIFICATE.
[[nodiscard]] std::vector<std::string> policyIdentifiers(X509& certificate);

// The explicit text of the first user notice.
[[nodiscard]] std::string explicitText(X509& certificate);

} // namespace zvcrypt
