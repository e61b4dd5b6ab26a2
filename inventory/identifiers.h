#pragma once

#include "card/session.h"
#include "kinds.h"
#include "records.h"
#include "store/objects.h"
#include "store/walk.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

// The identifiers on a card and the series that they belong to.
namespace zv {

// The identifiers of every object of one class; each is cut at ZV_ID_MAX characters.
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

// True when a record equals an identifier as a whole.
[[nodiscard]] bool has_record(std::span<const ckaid> records, std::string_view id);

inline bool is_authentication(std::string_view id) {
    return kind_of_pair(id) == Kind::authentication;
}

// True when a certificate's identifier fits.
template <typename Test> bool any_certificate(const IdentifierTables& tables, Test test) {
    return std::any_of(tables.certificates.begin(), tables.certificates.end(), [&test](const ckaid& record) {
        return record.id[0] != '\0' && test(std::string_view(record.id));
    });
}

} // namespace zv
