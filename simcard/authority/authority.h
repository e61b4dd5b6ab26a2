#pragma once

#include "ossl/owners.h"
#include "simcard/authority/certificate_kind.h"
#include "simcard/authority/keys.h"

#include <ctime>
#include <filesystem>

namespace simcard {

// From when to when a certificate holds; seconds since 1970.
struct Validity {
    std::time_t from;
    std::time_t to;
};

constexpr std::time_t ONE_DAY = std::time_t{24} * 60 * 60;
constexpr std::time_t ONE_YEAR = 365 * ONE_DAY;

// The longest that a certificate is issued for: less than the authority itself has left for a long while.
constexpr int LONGEST_DAYS = 10 * 365;

// The small demonstration authority that signs the certificates of simulated cards.
class Authority {
  public:
    // Opens the authority kept in `folder`. @throws Refusal when there is none.
    [[nodiscard]] static Authority open(const std::filesystem::path& folder);

    // The same, but makes a new one first when there is none: a folder of mode 0700 with "key.pem" (mode
    // 0600) and "certificate.pem", its key taken from `keys`. Two processes that do so at once get the same
    // one.
    //
    // @throws Failure when it cannot be made.
    [[nodiscard]] static Authority open_or_create(const std::filesystem::path& folder, KeySource& keys);

    // Where the authority of a folder of cards is kept: inside it, hidden, in a folder that is no card.
    [[nodiscard]] static std::filesystem::path folder_beside_cards(const std::filesystem::path& cards_home);

    [[nodiscard]] X509& certificate() const { return *certificate_; }

    // Issues a certificate: version 3, a random serial number, signed with SHA-256.
    [[nodiscard]] ossl::Certificate issue(const X509_NAME& subject, EVP_PKEY& subject_key,
                                          const CertificateKind& kind, Validity validity) const;

    // Issues a certificate that is like another authority's: its subject, dates, serial number and extensions, as far
    // as they do not tell of keys.
    [[nodiscard]] ossl::Certificate issue_like(X509& other, EVP_PKEY& subject_key) const;

  private:
    Authority(ossl::Key key, ossl::Certificate certificate);

    ossl::Key key_;
    ossl::Certificate certificate_;
};

} // namespace simcard
