#ifndef ZV_REQUEST_SUBJECT_H
#define ZV_REQUEST_SUBJECT_H

#include <cstddef>
#include <span>

#include "records.h"
#include "routines.h"

/** The subject of a request: which attributes it has, in which order, and its DER. */
namespace zv {

/** One attribute: the DER of its OID, the type of its value, and where in the name record the value stands.
 */
struct SubjectRow {
    std::span<const unsigned char> oid;
    unsigned char stringType;
    std::size_t offset;
};

/** The attributes that a kind of request can carry, and how many at most. */
struct SubjectTable {
    std::span<const SubjectRow> rows;
    std::size_t limit;
};

/** For a generated pair. */
extern const SubjectTable SUBJECT_TABLE;
/** For a services card's own pair: without title and pseudonym. */
extern const SubjectTable SUBJECT_TABLE_CNS;

/**
 * Name (RFC 2986): one RDN of one attribute for each row with a value. Null, the reason logged, when there is
 * none, or more than the limit.
 */
[[nodiscard]] ADATA* buildName(const datiDN& subject, const SubjectTable& table);

} // namespace zv

#endif
