#include "simcard/authority/renewal.h"

#include "ossl/owners.h"
#include "simcard/authority/errors.h"
#include "simcard/authority/name.h"
#include "simcard/authority/request_encoding.h"

namespace simcard {
namespace {

VerifiedRequest verify(DecodedRequest decoded, const Authority& authority, const RenewalTerms& terms) {
    if (auto* message = std::get_if<ossl::Message>(&decoded))
        return verify_signed_request(**message, authority.certificate());
    if (!terms.bare_requests) throw Refusal("The request is not signed by a certificate's holder.");
    return verify_bare_request(std::move(std::get<ossl::Request>(decoded)));
}

void check_same_person(const X509_NAME& requested, const X509_NAME& signer) {
    const std::string person = person_in_name(signer);
    if (person.empty()) throw Refusal("The signer's certificate does not say whose it is.");
    if (person_in_name(requested) != person)
        throw Refusal("The request is for another person than the one who signed it.");
}

ossl::Name subject_of(const VerifiedRequest& verified, const std::string& other_person) {
    ossl::Name subject =
        ossl::made(ossl::Name(X509_NAME_dup(X509_REQ_get_subject_name(verified.request.get()))));
    if (other_person.empty()) return subject;
    const int number = X509_NAME_get_index_by_NID(subject.get(), NID_serialNumber, -1);
    if (number >= 0) X509_NAME_ENTRY_free(X509_NAME_delete_entry(subject.get(), number));
    add_to_name(*subject, NID_serialNumber, "TINIT-" + other_person);
    return subject;
}

} // namespace

Renewal answer_request(const Authority& authority, std::string_view file, const RenewalTerms& terms) {
    VerifiedRequest verified = verify(decode_request(file), authority, terms);
    const ossl::Name subject = subject_of(verified, terms.other_person);
    if (verified.signer)
        check_same_person(*X509_REQ_get_subject_name(verified.request.get()),
                          *X509_get_subject_name(verified.signer.get()));
    if (terms.kind == nullptr && !verified.signer)
        throw Refusal("A request that nobody signed needs a kind.");
    const CertificateKind& kind = terms.kind != nullptr ? *terms.kind : kind_of(*verified.signer);

    const std::time_t start = std::time(nullptr) + terms.starts_in * ONE_DAY;
    EVP_PKEY& key = *X509_REQ_get0_pubkey(verified.request.get());
    ossl::Certificate certificate =
        authority.issue(*subject, key, kind, {start, start + terms.days * ONE_DAY});
    return {std::move(certificate), std::move(verified), kind};
}

} // namespace simcard
