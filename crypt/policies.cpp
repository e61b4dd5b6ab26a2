#include "policies.h"

#include "certificate.h"
#include "failure.h"

namespace zvcrypt {
namespace {

PoliciesPtr policiesOf(X509& certificate) {
    constexpr int absent = -1;
    int state = 0;
    PoliciesPtr policies(static_cast<CERTIFICATEPOLICIES*>(
        X509_get_ext_d2i(&certificate, NID_certificate_policies, &state, nullptr)));
    if (!policies && state != absent)
        throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Le policy del certificato non sono leggibili");
    return policies;
}

std::string numberOf(const ASN1_OBJECT* object) {
    std::string number(static_cast<std::size_t>(std::max(0, OBJ_obj2txt(nullptr, 0, object, 1))) + 1, '\0');
    (void)OBJ_obj2txt(number.data(), static_cast<int>(number.size()), object, 1);
    number.pop_back();
    return number;
}

const ASN1_STRING* explicitTextOf(const POLICYINFO& policy) {
    for (int i = 0; i < sk_POLICYQUALINFO_num(policy.qualifiers); ++i) {
        const POLICYQUALINFO* qualifier = sk_POLICYQUALINFO_value(policy.qualifiers, i);
        if (OBJ_obj2nid(qualifier->pqualid) == NID_id_qt_unotice && qualifier->d.usernotice != nullptr)
            return qualifier->d.usernotice->exptext;
    }
    return nullptr;
}

} // namespace

std::vector<std::string> policyIdentifiers(X509& certificate) {
    const PoliciesPtr policies = policiesOf(certificate);
    std::vector<std::string> identifiers;
    for (int i = 0; i < sk_POLICYINFO_num(policies.get()); ++i)
        identifiers.push_back(numberOf(sk_POLICYINFO_value(policies.get(), i)->policyid));
    return identifiers;
}

std::string explicitText(X509& certificate) {
    const PoliciesPtr policies = policiesOf(certificate);
    for (int i = 0; i < sk_POLICYINFO_num(policies.get()); ++i)
        if (const auto* text = explicitTextOf(*sk_POLICYINFO_value(policies.get(), i)))
            return utf8Text(*text);
    return {};
}

} // namespace zvcrypt
