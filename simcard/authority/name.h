#pragma once

#include "ossl/owners.h"

#include <string>

namespace simcard {

// Who holds a card. The default is nobody: the place of birth in the tax code does not exist.
struct Holder {
    std::string given_name = "Ada";
    std::string surname = "Collaudo";
    std::string tax_code = "CLLDAA80A41Z999U";
    std::string organisation = "Non presente";
};

// Builds the subject that an Italian certificate gives its holder: C, O, CN, serialNumber
// ("TINIT-" and the tax code), SN, GN, dnQualifier, in this order.
//
// @throws Refusal when a value is empty or too long for its attribute.
[[nodiscard]] ossl::Name holder_name(const Holder& holder, const std::string& dn_qualifier);

// Builds the subject of a services card's own certificate: C, O, OU, CN, SN, GN, in this order. Its CN is the
// tax code, "/", the card's number in 16 digits, "." and 28 characters in base64: 62 in all, as such cards
// have it. On a real card those last are the SHA-1 of its personal data, here that of what stands before them.
//
// @throws Refusal as above.
[[nodiscard]] ossl::Name services_card_name(const Holder& holder, const std::string& card_number);

// Adds one attribute (`nid` as OpenSSL numbers them) with a UTF-8 value to a name.
void add_to_name(X509_NAME& name, int nid, const std::string& value);

// The first value of an attribute as UTF-8; an empty text when the name has none.
[[nodiscard]] std::string value_in_name(const X509_NAME& name, int nid);

// Whom a subject names: its serialNumber or, when it has none, what its CN has in front of a "/". Empty when
// it names nobody.
[[nodiscard]] std::string person_in_name(const X509_NAME& name);

// The whole name on one line for a person: "C=IT, O=..., CN=...".
[[nodiscard]] std::string readable(const X509_NAME& name);

} // namespace simcard
