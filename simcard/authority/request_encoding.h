#pragma once

#include "ossl/owners.h"

#include <string>
#include <string_view>
#include <variant>

namespace simcard {

// What a request file holds: a request inside a signed message, or the request alone.
using DecodedRequest = std::variant<ossl::Message, ossl::Request>;

// Reads a request file in whatever form it comes: base64 without frame (what the renewal library returns),
// PEM, or binary; a signed message (PKCS#7) or a bare PKCS#10 request. Nothing is verified yet.
//
// @throws Refusal when it is none of these, is cut short, or has bytes behind its end.
[[nodiscard]] DecodedRequest decode_request(std::string_view file);

// Reads a PKCS#10 request in PEM. @throws Refusal as above.
[[nodiscard]] ossl::Request decode_pem_request(std::string_view text);

} // namespace simcard
