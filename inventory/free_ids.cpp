// The identifiers that a new signature pair and a new authentication pair should carry.
#include "inventory/card_state.h"
#include "records.h"
#include "store/deletion.h"
#include "util/text.h"
#include "zvRenew.h"

#include <algorithm>

bool use2048Bit = false;
bool force2048PraGen = true;

namespace zv {

namespace {

// Unlike an inventory, which reports one pending pair, this takes the first of each kind.
void take_pending_of_each(const IdentifierTables& tables, CardState& state) {
    for_each_pending(tables, [&state](std::string_view id) {
        PairState& pair = state.pairs[kind_of_pair(id)];
        if (pair.id[0] == '\0') copy_text(pair.id, id);
        return true;
    });
}

bool settle(const IdentifierTables& tables, CardState& state) {
    return std::ranges::all_of(KINDS, [&](const KindRow& kind) {
        PairState& pair = state.pairs[kind.id];
        return !kind.new_pair || pair.id[0] != '\0' || propose_free(tables.public_keys, kind.series, pair);
    });
}

} // namespace

void clear_key_size_flags() {
    use2048Bit = false;
    force2048PraGen = true;
}

void set_key_size_flags(const IdentifierTables& tables) {
    clear_key_size_flags();
    use2048Bit = any_certificate(
        tables, [](std::string_view id) { return in_series(id, SIGNATURE_SERIES, RENEWED_DIGITS); });
}

void discard_first_key(const IdentifierTables& tables, char (&id)[ZV_KEY_ID_SIZE]) {
    if (!is1205SerialToken) return;
    for (const ckaid& record : tables.certificates)
        if (std::string_view(record.id).starts_with(SIGNATURE_SERIES) &&
            in_series(id, SIGNATURE_SERIES, FIRST_DIGITS) && delete_all_with(hSession, id))
            id[0] = '\0';
}

int find_free_ids(CardState& state) {
    clear_key_size_flags();
    IdentifierTables tables;
    if (!gather_identifiers(tables)) return ZV_UNUSABLE;
    take_pending_of_each(tables, state);
    set_key_size_flags(tables);
    discard_first_key(tables, state.pairs[Kind::signature].id);
    return settle(tables, state) ? 0 : SERIES_FULL;
}

} // namespace zv
