#pragma once

#include "records.h"
#include "request/der.h"
#include "util/name_forms.h"

#include <span>

// The subject of a request: which attributes it has, in which order, and its DER.
namespace zv {

// The values that a kind of request can carry.
using SubjectTable = std::span<const NamePlace>;

// For a generated pair.
inline constexpr SubjectTable SUBJECT_TABLE = forms::REQUEST;
// For a services card's own pair.
inline constexpr SubjectTable SUBJECT_TABLE_CNS = forms::SERVICES_CARD_REQUEST;

// Name (RFC 2986): one RDN of one attribute for each row with a value. Empty, the reason logged, when there is
// none, or more than rows.
[[nodiscard]] der::Bytes build_name(const datiDN& subject, SubjectTable table);

} // namespace zv
