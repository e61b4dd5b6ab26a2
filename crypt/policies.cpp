#include "policies.h"

#include "asn1_text.h"
#include "object_id.h"

// Read element by element: OpenSSL gives no policy at all when it dislikes the type of one notice's text.
namespace zvcrypt {
namespace {

// One policy: its identifier, and what may follow it.
std::vector<der::Reader> policiesOf(const CertificateParts& certificate) {
    const auto value = extensionValue(certificate, NID_certificate_policies);
    if (!value) return {};
    der::Reader extension(*value, "Le policy del certificato non sono leggibili");
    der::Reader list = extension.enter(der::sequence);
    if (!extension.atEnd()) extension.complain();
    std::vector<der::Reader> policies;
    while (!list.atEnd())
        policies.push_back(list.enter(der::sequence));
    return policies;
}

// Nothing for a notice that only refers to a text elsewhere.
std::optional<std::string> textOfNotice(der::Reader notice) {
    while (!notice.atEnd()) {
        const auto element = notice.next();
        if (element.tag != der::sequence) return displayText(element.tag, element.content);
    }
    return std::nullopt;
}

std::optional<std::string> firstNotice(der::Reader policy) {
    (void)policy.next(der::oid);
    if (policy.atEnd()) return std::nullopt;
    for (der::Reader qualifiers = policy.enter(der::sequence); !qualifiers.atEnd();) {
        der::Reader qualifier = qualifiers.enter(der::sequence);
        if (!der::isSame(qualifier.next(der::oid).whole, der::objectIdentifier(NID_id_qt_unotice))) continue;
        if (auto text = textOfNotice(qualifier.enter(der::sequence))) return text;
    }
    return std::nullopt;
}

} // namespace

std::vector<std::string> policyIdentifiers(const CertificateParts& certificate) {
    std::vector<std::string> identifiers;
    for (auto& policy : policiesOf(certificate))
        identifiers.push_back(dottedNumber(policy.next(der::oid).whole));
    return identifiers;
}

std::string explicitText(const CertificateParts& certificate) {
    for (const auto& policy : policiesOf(certificate))
        if (auto text = firstNotice(policy)) return *text;
    return {};
}

} // namespace zvcrypt
