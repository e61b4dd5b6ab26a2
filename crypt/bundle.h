#pragma once

#include "crypt/certificate.h"

#include <vector>

namespace zvcrypt {

// Each adds what the bytes hold; ZVC_ERR_BAD_CERTIFICATE or ZVC_ERR_TEXT_FORM when they hold no such thing.
void add_certificate(const Bytes& der, std::vector<Certificate>& certificates);
// With OpenSSL's notes on what it is trusted for behind it.
void add_trusted_certificate(const Bytes& der, std::vector<Certificate>& certificates);
void add_bundle(const Bytes& der, std::vector<Certificate>& certificates);
void add_certificate_or_bundle(const Bytes& der, std::vector<Certificate>& certificates);

// The one certificate that is no authority's and issued none of the others; one that stands alone is its
// holder's unless it says that it signs others. ZVC_ERR_NO_HOLDER or ZVC_ERR_TWO_HOLDERS when there is not
// exactly one, ZVC_ERR_TEXT_FORM without any certificate.
[[nodiscard]] const Certificate& holder_certificate(const std::vector<Certificate>& certificates);

} // namespace zvcrypt
