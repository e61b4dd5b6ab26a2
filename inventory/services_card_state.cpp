// What a services card holds for a renewal.
#include "diag/report.h"
#include "inventory/card_state.h"
#include "util/text.h"
#include "util/trim.h"

#include <algorithm>
#include <cstdlib>

namespace zv {

namespace {

bool begins_series(const KindRow& kind, std::string_view id) {
    return kind.new_pair && id.starts_with(kind.series);
}

bool begins_a_series(std::string_view id) {
    return std::ranges::any_of(KINDS, [id](const KindRow& kind) { return begins_series(kind, id); });
}

bool read_expiry(CK_OBJECT_HANDLE object, CardState& state) {
    char value[16384];
    if (read_text(hSession, object, CKA_VALUE, value) != CKR_OK) return false;
    trace("Find_ALL_PendingCNS", "DATAFIELD_PDATA_CNS", value);
    const std::string_view date = expiry_in(value);
    if (!date.empty()) copy_text(state.expiry, date);
    return true;
}

bool gather_on_services_card(IdentifierTables& tables, CardState& state) {
    return walk_identities({}, [&](CK_OBJECT_HANDLE object, const ObjectIdentity& identity) {
        char text[256];
        if (!is_tolerated(read_text(hSession, object, CKA_LABEL, text))) return false;
        if (identity.object_class != CKO_DATA) {
            if (begins_a_series(identity.id)) tables.file(identity.object_class, identity.id);
            return true;
        }
        const std::string_view label = text;
        if (label == ZV_PENDING_MARKER) state.pairs[Kind::services].pending = 1;
        return label != "PDATA" || read_expiry(object, state);
    });
}

} // namespace

int read_services_card_state(CardState& state) {
    IdentifierTables tables;
    if (!gather_on_services_card(tables, state)) return SEARCH_FAILED;
    take_first_pending(tables, state);
    set_key_size_flags(tables);
    PairState& pair = state.pairs[Kind::signature];
    if (pair.pending == 1 && pair.id[0] != '\0') {
        discard_first_key(tables, pair.id);
        if (pair.id[0] == '\0') pair.pending = 0;
    }
    return propose_missing(tables, begins_series, state) ? 0 : SERIES_FULL;
}

std::string_view expiry_in(std::string_view personal_data) {
    constexpr std::size_t length_at = 6, mark_at = 8, date_after = 20, date_length = 8;
    if (personal_data.size() < mark_at) return {};
    char mark[4], digits[3];
    copy_text(mark, personal_data.substr(mark_at, 3));
    if (std::string_view(upper_case(mark)) == "XXX") return {};
    copy_text(digits, personal_data.substr(length_at, 2));
    const long length = std::strtol(digits, nullptr, 10);
    if (length <= 0) return {};
    const std::size_t start = date_after + static_cast<std::size_t>(length);
    return start + date_length <= personal_data.size() ? personal_data.substr(start, date_length)
                                                       : std::string_view();
}

} // namespace zv
