#include "inventory/card_state.h"

#include "diag/report.h"
#include "util/numbers.h"
#include "util/text.h"

#include <algorithm>

namespace zv {

namespace {

constexpr char STATE_TITLE[] = "Find_ALL_Pending: ";

constexpr SearchLog STATE_LOG = {.after = [](const SearchCall& call) {
    char title[64];
    copy_text(title, STATE_TITLE);
    append_text(title, call.name);
    trace(title, call.result == CKR_OK ? "OK" : with_hex("Errore = ", static_cast<long>(call.result)));
}};

bool marks_signature(std::string_view id) {
    return id.starts_with(OTHER_SIGNATURE_SERIES) || id.starts_with(SIGNATURE_SERIES);
}

bool marks_kind(const KindRow& kind, std::string_view id) {
    return marks_signature(id) == (kind.id == Kind::signature);
}

} // namespace

void take_first_pending(const IdentifierTables& tables, CardState& state) {
    for_each_pending(tables, [&state](std::string_view id) {
        PairState& pair = state.pairs[kind_of_pair(id)];
        copy_text(pair.id, id);
        pair.pending = 1;
        return false;
    });
}

bool propose_free(const IdentifierTable& public_keys, std::string_view series, PairState& pair) {
    for (const char& digit : RENEWED_DIGITS) {
        copy_text(pair.id, series);
        append_text(pair.id, {&digit, 1});
        if (!public_keys.contains(pair.id)) return true;
    }
    copy_text(pair.id, series);
    return false;
}

bool propose_missing(const IdentifierTables& tables, KindTest is_of_kind, CardState& state) {
    return std::ranges::all_of(KINDS, [&](const KindRow& kind) {
        PairState& pair = state.pairs[kind.id];
        const auto fits = [&](std::string_view id) { return is_of_kind(kind, id); };
        return !kind.new_pair || pair.pending != 0 || !any_certificate(tables, fits) ||
               propose_free(tables.public_keys, kind.series, pair);
    });
}

int read_card_state(CardState& state) {
    IdentifierTables tables;
    if (!gather_identifiers(tables, STATE_LOG)) return SEARCH_FAILED;
    trace(STATE_TITLE, "Loop sulle chiavi pubbliche: inizio");
    take_first_pending(tables, state);
    trace(STATE_TITLE, "Loop sulle chiavi pubbliche: fine");
    if (tables.certificates.empty()) return 0;
    if (!propose_missing(tables, marks_kind, state)) return SERIES_FULL;
    trace(STATE_TITLE, "return 0 (OK)");
    return 0;
}

} // namespace zv
