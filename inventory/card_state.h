#pragma once

#include "inventory/identifiers.h"
#include "records.h"
#include "zvRenew.h"

// What a card holds for a renewal: pairs that wait for their certificate, identifiers that are free, and what a
// services card says of itself.
namespace zv {

// Results beside 0: a series has no free identifier; a PKCS#11 call failed.
constexpr int SERIES_FULL = 1;
constexpr int SEARCH_FAILED = 65535;

// The pair of one kind: its identifier, or a free one for a new pair.
struct PairState {
    int pending = 0; // 1: it waits; what is not 0 before stays, and keeps a free one away
    char id[ZV_KEY_ID_SIZE] = {};
};

struct CardState {
    ByKind<PairState> pairs; // of a services card's own one the flag alone, by its marker
    char expiry[9] = {};     // of a services card, unless empty
};

// The first pair that waits, and a free identifier for each kind that has a certificate and no such pair.
[[nodiscard]] int read_card_state(CardState& state);

// The same of a services card, with its marker and expiry date; sets the key-size flags.
[[nodiscard]] int read_services_card_state(CardState& state);

// The first pair that waits of each kind, else a free identifier, whatever the card holds; sets the key-size flags.
// A search that failed is ZV_UNUSABLE here.
[[nodiscard]] int find_free_ids(CardState& state);

// The date in a services card's personal data; empty when they hold none.
[[nodiscard]] std::string_view expiry_in(std::string_view personal_data);

// Calls take(id) for each pair that waits for its certificate, in the order of the public keys, until it
// returns false. The card's first keys never count as pending.
template <typename Take> void for_each_pending(const IdentifierTables& tables, Take take) {
    for (const ckaid& record : tables.public_keys) {
        const std::string_view id = record.id;
        if (id.empty() || !tables.private_keys.contains(id) || tables.certificates.contains(id)) continue;
        if (in_series(id, kind_row(kind_of_pair(id)).series, FIRST_DIGITS)) continue;
        if (!take(id)) return;
    }
}

// Takes the first pending pair, of either kind.
void take_first_pending(const IdentifierTables& tables, CardState& state);

// Writes the first identifier of a renewed pair that no public key has; the bare series and false when all are taken.
[[nodiscard]] bool propose_free(const IdentifierTable& public_keys, std::string_view series, PairState& pair);

// Proposes a free identifier for each kind that a certificate is of and no pending pair; false when a series is full.
using KindTest = bool (*)(const KindRow& kind, std::string_view id);
[[nodiscard]] bool propose_missing(const IdentifierTables& tables, KindTest is_of_kind, CardState& state);

void clear_key_size_flags();

// Sets the key-size flags as the signature certificates want them.
void set_key_size_flags(const IdentifierTables& tables);

// On a card of the 1205 series with signature certificates, deletes what bears the identifier of a first key, and
// empties the identifier when that worked.
void discard_first_key(const IdentifierTables& tables, char (&id)[ZV_KEY_ID_SIZE]);

} // namespace zv
