#include "simcard/authority/renewal.h"

#include "simcard/authority/errors.h"
#include "simcard/authority/name.h"
#include "simcard/authority/request_encoding.h"

namespace simcard {
namespace {

VerifiedRequest verify(DecodedRequest decoded, const Authority& authority, const RenewalTerms& terms) {
    if (auto* message = std::get_if<CmsMessage>(&decoded))
        return verify_signed_request(**message, authority.certificate());
    if (!terms.bare_requests) throw Refusal("The request is not signed by a certificate's holder.");
    return verify_bare_request(std::move(std::get<CertificateRequest>(decoded)));
}

void check_same_person(const X509_NAME& requested, const X509_NAME& signer) {
    const std::string person = person_in_name(signer);
    if (person.empty()) throw Refusal("The signer's certificate does not say whose it is.");
    if (person_in_name(requested) != person)
        throw Refusal("The request is for another person than the one who signed it.");
}

} // namespace

Renewal answer_request(const Authority& authority, std::string_view file, const RenewalTerms& terms) {
    VerifiedRequest verified = verify(decode_request(file), authority, terms);
    const X509_NAME& subject = *X509_REQ_get_subject_name(verified.request.get());
    if (verified.signer) check_same_person(subject, *X509_get_subject_name(verified.signer.get()));
    if (terms.kind == nullptr && !verified.signer)
        throw Refusal("A request that nobody signed needs a kind.");
    const CertificateKind& kind = terms.kind != nullptr ? *terms.kind : kind_of(*verified.signer);

    const std::time_t now = std::time(nullptr);
    EVP_PKEY& key = *X509_REQ_get0_pubkey(verified.request.get());
    Certificate certificate = authority.issue(subject, key, kind, {now, now + terms.days * one_day});
    return {std::move(certificate), std::move(verified), kind};
}

} // namespace simcard
