#include "crypt/policies.h"

#include "crypt/asn1_text.h"
#include "crypt/object_id.h"

#include <openssl/objects.h>

// Read element by element: OpenSSL gives no policy at all when it dislikes the type of one notice's text.
namespace zvcrypt {
namespace {

// One policy: its identifier, and what may follow it.
std::vector<der::Reader> policies_of(const CertificateParts& certificate) {
    const auto value = extension_value(certificate, NID_certificate_policies);
    if (!value) return {};
    der::Reader extension(*value, "Le policy del certificato non sono leggibili");
    der::Reader list = extension.enter(der::sequence);
    if (!extension.at_end()) extension.complain();
    std::vector<der::Reader> policies;
    while (!list.at_end())
        policies.push_back(list.enter(der::sequence));
    return policies;
}

// Nothing for a notice that only refers to a text elsewhere.
std::optional<std::string> text_of_notice(der::Reader notice) {
    while (!notice.at_end()) {
        const auto element = notice.next();
        if (element.tag != der::sequence) return display_text(element.tag, element.content);
    }
    return std::nullopt;
}

std::optional<std::string> first_notice(der::Reader policy) {
    (void)policy.next(der::oid);
    if (policy.at_end()) return std::nullopt;
    for (der::Reader qualifiers = policy.enter(der::sequence); !qualifiers.at_end();) {
        der::Reader qualifier = qualifiers.enter(der::sequence);
        if (!der::is_same(qualifier.next(der::oid).whole, der::object_identifier(NID_id_qt_unotice)))
            continue;
        if (auto text = text_of_notice(qualifier.enter(der::sequence))) return text;
    }
    return std::nullopt;
}

} // namespace

std::vector<std::string> policy_identifiers(const CertificateParts& certificate) {
    std::vector<std::string> identifiers;
    for (auto& policy : policies_of(certificate))
        identifiers.push_back(dotted_number(policy.next(der::oid).whole));
    return identifiers;
}

std::string explicit_text(const CertificateParts& certificate) {
    for (const auto& policy : policies_of(certificate))
        if (auto text = first_notice(policy)) return *text;
    return {};
}

} // namespace zvcrypt
