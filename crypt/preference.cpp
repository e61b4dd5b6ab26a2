#include "crypt/preference.h"

#include "ossl/owners.h"
namespace zvcrypt {
namespace {

using GeneralizedTimePtr = ossl::Owner<ASN1_GENERALIZEDTIME, ASN1_GENERALIZEDTIME_free>;

// "YYYYMMDDHHMMSSZ", which sorts as the dates do; empty for a malformed one.
std::string sortable(const ASN1_TIME* time) {
    const GeneralizedTimePtr full(time == nullptr ? nullptr : ASN1_TIME_to_generalizedtime(time, nullptr));
    if (!full) return {};
    return {reinterpret_cast<const char*>(ASN1_STRING_get0_data(full.get())),
            static_cast<std::size_t>(ASN1_STRING_length(full.get()))};
}

} // namespace

Preference preference_of(const Certificate& certificate, std::time_t time) {
    const std::string now = sortable(ossl::Time(ASN1_TIME_set(nullptr, time)).get());
    const std::string from = sortable(X509_get0_notBefore(certificate.x509.get()));
    const std::string to = sortable(X509_get0_notAfter(certificate.x509.get()));
    return {from <= now && now <= to, to, from, certificate.der};
}

} // namespace zvcrypt
