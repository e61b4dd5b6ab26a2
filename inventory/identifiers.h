#pragma once

#include "card/session.h"
#include "store/objects.h"
#include "store/walk.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

// The identifiers on a card and what they mean: pending pairs, first keys, free places in a series.
namespace zv {

// Result of a search for free identifiers that a series has none of.
constexpr int SERIES_FULL = 1;
// Result of a search for pending pairs that a PKCS#11 call failed in.
constexpr int SEARCH_FAILED = 65535;

inline constexpr std::string_view OWN_PAIR = "CNS0";
inline constexpr std::string_view SIGNATURE_SERIES = "DS";
inline constexpr std::string_view AUTHENTICATION_SERIES = "AUTHCertificate";

// The identifiers of every object of one class; each is cut at 31 characters.
class IdentifierTable {
  public:
    // Throws without memory: a table that lacks an object would call a taken identifier free.
    void add(std::string_view id);
    // Looks for an identifier of any length, cut as those of the table are.
    [[nodiscard]] bool contains(std::string_view id) const;
    [[nodiscard]] bool empty() const { return records_.empty(); }
    auto begin() const { return records_.begin(); }
    auto end() const { return records_.end(); }

  private:
    std::vector<ckaid> records_;
};

struct IdentifierTables {
    IdentifierTable public_keys, private_keys, certificates;

    // Files an identifier by class; other classes are ignored.
    void file(CK_OBJECT_CLASS object_class, std::string_view id);
};

// What every search for identifiers reads of an object first, an attribute a call: class, key type, CKA_ID.
struct ObjectIdentity {
    CK_OBJECT_CLASS object_class = 0;
    CK_KEY_TYPE key_type = 0;
    char id[256] = {};

    // False when a read failed with a code that is not tolerated.
    [[nodiscard]] bool read(CK_OBJECT_HANDLE object);
};

// Reads the identity of every object on the card, which examine then says of whether to go on. False when a call failed
// or examine gave up; the search is ended, and the log told so, in any case.
template <typename Examine> [[nodiscard]] bool walk_identities(const SearchLog& log, Examine examine) {
    return walk({.session = hSession, .log = log, .exits = ALWAYS_ENDED},
                [&examine](CK_OBJECT_HANDLE object) {
                    ObjectIdentity identity;
                    return identity.read(object) && examine(object, identity) ? Visit::go_on : Visit::give_up;
                })
        .whole();
}

// Files every key and certificate; each object's value is read too.
[[nodiscard]] bool gather_identifiers(IdentifierTables& tables, const SearchLog& log = {});

inline bool is_authentication(std::string_view id) {
    return id.find(AUTHENTICATION_SERIES) != std::string_view::npos;
}

// The series followed by a digit in that range.
[[nodiscard]] bool in_series(std::string_view id, std::string_view series, char first, char last);

// Calls take(id) for each pair that waits for its certificate, in the order of the public keys, until it
// returns false. The card's first keys never count as pending.
template <typename Take> void for_each_pending(const IdentifierTables& tables, Take take) {
    for (const ckaid& record : tables.public_keys) {
        const std::string_view id = record.id;
        if (id.empty() || !tables.private_keys.contains(id) || tables.certificates.contains(id)) continue;
        if (in_series(id, is_authentication(id) ? AUTHENTICATION_SERIES : SIGNATURE_SERIES, '0', '2'))
            continue;
        if (!take(id)) return;
    }
}

// The first pending pair of either kind goes into its buffer of 32 characters and sets its flag.
void take_first_pending(const IdentifierTables& tables, int* pending_pra, int* pending_aut, char* ckaid_pra,
                        char* ckaid_aut);

// Writes the first of 3, 4, 5 in the series that no public key has into out (32 characters); the bare series
// and false when all are taken.
[[nodiscard]] bool propose_free(const IdentifierTable& public_keys, std::string_view series, char* out);

// Sets the key-size flags from the signature certificates. On a card of the 1205 series key_pra is emptied once the
// objects of a first key that it names are deleted. Returns true when there is a signature certificate.
bool read_signature_certificates(const IdentifierTables& tables, char* key_pra);

// True when a certificate's identifier fits.
template <typename Test> bool any_certificate(const IdentifierTables& tables, Test test) {
    return std::any_of(tables.certificates.begin(), tables.certificates.end(), [&test](const ckaid& record) {
        return record.id[0] != '\0' && test(std::string_view(record.id));
    });
}

} // namespace zv
