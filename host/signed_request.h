#pragma once

#include "host/module.h"

#include <string>

namespace zvhost {

// Takes the public key out of a request: what the request command saves (base64 of a signed message), the
// same in PEM or DER, or a bare PKCS#10 request.
//
// @return the RSA modulus without leading zeros; empty when the text holds no request with an RSA key
[[nodiscard]] Bytes modulus_of_request(const std::string& request);

// Whether a file is what the request command saves. It holds the certificate that signed it.
[[nodiscard]] bool is_request(const std::string& text);

// The certificate of whoever signed what the request command saves, DER; empty when it is not in there.
[[nodiscard]] Bytes signer_of_request(const std::string& request);

} // namespace zvhost
