#pragma once

#include "simcard/authority/authority.h"
#include "simcard/authority/signed_request.h"

#include <string>
#include <string_view>

namespace simcard {

struct RenewalTerms {
    // The kind to issue; null: the kind of the certificate that signed the request.
    const CertificateKind* kind = nullptr;
    int days = 3 * 365;
    // From when on it holds, in days from now; negative for the past.
    int starts_in = 0;
    // Issues it to somebody else: the tax code; empty: whom the request names.
    std::string other_person = {};
    // Whether a request without a signed message around it is taken: nothing then says whose it is.
    bool bare_requests = false;
};

struct Renewal {
    ossl::Certificate certificate;
    VerifiedRequest request;
    const CertificateKind& kind;
};

// Answers a request file: verifies it, checks that the request is for the person who signed it (both
// subjects name the same), and issues the certificate, with the request's subject and key.
//
// @throws Refusal that says why nothing was issued.
[[nodiscard]] Renewal answer_request(const Authority& authority, std::string_view file,
                                     const RenewalTerms& terms);

} // namespace simcard
