#pragma once

#include "cli/inventory.h"
#include "cli/json.h"

#include <string>
#include <vector>

namespace cli {

// A certificate of the card, as it stands today.
struct ListedCertificate {
    CertificateRecord record;
    long days_left = 0;
    bool due = false;       // it ends soon, and was not replaced yet
    bool replaced = false;  // one of its kind ends later
    bool requested = false; // of a services card: a request for the next one is under way
};

// A pending pair, and what can be done about it.
struct ListedPair {
    PendingPair pair;
    bool wants_pin = false; // before each signature: it cannot sign its own request
    bool renewable = false; // a certificate of its kind is there to ask with
};

// What the list says of a card.
struct CardList {
    CardFacts card;
    int days = 0; // a certificate is due when it ends within so many
    std::vector<ListedCertificate> certificates;
    std::size_t unreadable = 0;
    std::vector<ListedPair> pending;
    std::vector<RetiredPair> retired;
    bool services_pending = false; // a request for a services card's own certificate is under way
    bool services_stored = false;  // such a certificate is there
    zv::ByKind<Proposal> next;     // for a new pair
};

// @param days  a certificate is due when it ends within so many
[[nodiscard]] CardList list_of(const CardFacts& card, const Inventory& inventory, const CardView& view,
                               int days);

[[nodiscard]] std::string in_words(const CardList& list);
[[nodiscard]] Json as_json(const CardList& list);
// The same without what a new pair would be called.
[[nodiscard]] Json contents_json(const CardList& list);
[[nodiscard]] std::vector<Advice> advice_on(const CardList& list);

} // namespace cli
