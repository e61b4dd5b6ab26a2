#pragma once

#include "ossl/owners.h"

#include <string>
#include <string_view>
#include <vector>

namespace simcard {

// A request that was found to be what it says: see verify_signed_request() and verify_bare_request().
struct VerifiedRequest {
    ossl::Request request;
    // Whose key signed the message around the request; none for a bare request.
    ossl::Certificate signer;
    // What the authority lets pass but its operator should know; one sentence each.
    std::vector<std::string> notices;
};

// Verifies a request as a card's holder sends it: a PKCS#7 message whose content is the PKCS#10 request in
// PEM.
//
// The message must have one signer, whose certificate it carries and `authority` issued (an expired one is
// let pass with a notice: renewing late is common), the signed attributes content type, message digest and
// signing-certificate-v2, and a right signature; then the request inside is verified like a bare one.
//
// @throws Refusal that says what is wrong.
[[nodiscard]] VerifiedRequest verify_signed_request(CMS_ContentInfo& message, X509& authority);

// Verifies that the key of a request is one that this authority certifies, and that it signed the request.
[[nodiscard]] VerifiedRequest verify_bare_request(ossl::Request request);

} // namespace simcard
