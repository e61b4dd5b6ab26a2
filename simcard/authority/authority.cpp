#include "simcard/authority/authority.h"

#include "simcard/authority/build_certificate.h"
#include "simcard/authority/certificate_file.h"
#include "simcard/authority/errors.h"
#include "simcard/authority/files.h"
#include "simcard/authority/name.h"

#include <openssl/objects.h>

namespace simcard {
namespace {

constexpr const char* KEY_FILE = "key.pem";
constexpr const char* CERTIFICATE_FILE = "certificate.pem";

// Wide enough that every certificate of a card, also one made as long expired, lies within it.
Validity authority_validity() {
    const std::time_t now = std::time(nullptr);
    return {now - 10 * ONE_YEAR, now + 20 * ONE_YEAR};
}

ossl::Name authority_name() {
    ossl::Name name = ossl::made(ossl::Name(X509_NAME_new()));
    add_to_name(*name, NID_countryName, "IT");
    add_to_name(*name, NID_organizationName, "Korvalenta S.p.A.");
    add_to_name(*name, NID_commonName, "Korvalenta Firma Dig demo");
    return name;
}

// A folder that is made whole and then takes its name: of two makers one wins, and both use the winner's.
void create(const std::filesystem::path& folder, KeySource& keys) {
    const TemporaryFolder fresh(folder);
    const ossl::Key key = keys.next();
    const ossl::Name name = authority_name();
    const ossl::Certificate certificate =
        build_certificate({*name, *key, authority_kind(), authority_validity(), nullptr, *key});
    write_private_key(fresh.path() / KEY_FILE, *key);
    write_file(fresh.path() / CERTIFICATE_FILE, certificate_text(*certificate, CertificateForm::pem),
               Access::everyone_reads);
    std::error_code error;
    std::filesystem::rename(fresh.path(), folder, error);
    if (error && !std::filesystem::exists(folder / KEY_FILE))
        throw Failure("Cannot make " + folder.string() + " (" + error.message() + ").");
}

} // namespace

Authority::Authority(ossl::Key key, ossl::Certificate certificate)
    : key_(std::move(key)), certificate_(std::move(certificate)) {}

Authority Authority::open_or_create(const std::filesystem::path& folder, KeySource& keys) {
    if (!std::filesystem::exists(folder)) create(folder, keys);
    return open(folder);
}

Authority Authority::open(const std::filesystem::path& folder) {
    if (!std::filesystem::exists(folder)) throw Refusal("There is no authority in " + folder.string() + ".");
    ossl::Key key = KeySource::from_file(folder / KEY_FILE).next();
    ossl::Certificate certificate = read_certificate(folder / CERTIFICATE_FILE);
    if (X509_check_private_key(certificate.get(), key.get()) != 1)
        throw Refusal("In " + folder.string() +
                      " the authority's key and certificate do not belong together.");
    return {std::move(key), std::move(certificate)};
}

std::filesystem::path Authority::folder_beside_cards(const std::filesystem::path& cards_home) {
    return cards_home / ".authority";
}

ossl::Certificate Authority::issue(const X509_NAME& subject, EVP_PKEY& subject_key,
                                   const CertificateKind& kind, Validity validity) const {
    return build_certificate({subject, subject_key, kind, validity, certificate_.get(), *key_});
}

ossl::Certificate Authority::issue_like(X509& other, EVP_PKEY& subject_key) const {
    return copy_certificate(other, subject_key, *certificate_, *key_);
}

} // namespace simcard
