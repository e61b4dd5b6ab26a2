#pragma once

#include "host/certificate_record.h"
#include "host/choice.h"
#include "host/sentence.h"

#include <string>
#include <vector>

namespace zvhost {

// A pending pair of keys: it waits for its certificate.
struct PendingPair {
    Kind kind = Kind::signature;
    std::string id;
};

// The identifier that the library proposes for a new pair.
struct Proposal {
    std::string id;         // empty: no proposal
    bool none_free = false; // the series is full
};

// Keys that a removal left, known by the backup of their certificate: they wait for none.
struct RetiredPair {
    std::string id;
    std::string backup; // its file
};

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

// What a card holds.
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
    std::vector<Advice> advice;
};

// Reads a card with its PIN. @throws Error
[[nodiscard]] CardList list_card(const CardChoice& choice, PinSource& pin, int days);

} // namespace zvhost
