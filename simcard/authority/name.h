#pragma once

#include "simcard/authority/openssl_handles.h"

#include <string>

namespace simcard {

/// Who holds a card. The default is nobody: the place of birth in the codice fiscale does not exist.
struct Holder {
    std::string given_name = "Ada";
    std::string surname = "Collaudo";
    std::string codice_fiscale = "CLLDAA80A41Z999U";
    std::string organisation = "Non presente";
};

/**
 * Builds the subject that an Italian certificate gives its holder: C, O, CN, serialNumber
 * ("TINIT-" and the codice fiscale), SN, GN, dnQualifier, in this order.
 *
 * @throws Refusal when a value is empty or too long for its attribute.
 */
[[nodiscard]] DistinguishedName holder_name(const Holder& holder, const std::string& dn_qualifier);

/// Adds one attribute (`nid` as OpenSSL numbers them) with a UTF-8 value to a name.
void add_to_name(X509_NAME& name, int nid, const std::string& value);

/// The first value of an attribute as UTF-8; an empty text when the name has none.
[[nodiscard]] std::string value_in_name(const X509_NAME& name, int nid);

/// The whole name on one line for a person: "C=IT, O=..., CN=...".
[[nodiscard]] std::string readable(const X509_NAME& name);

} // namespace simcard
