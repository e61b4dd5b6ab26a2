#pragma once

#include "host/backup.h"
#include "host/card_list.h"
#include "host/card_view.h"
#include "host/certificate_record.h"
#include "host/pin_gate.h"

#include <optional>
#include <string>
#include <vector>

namespace zvhost {

// What a card holds, sorted as the library sorts it: what it answers to a reading of the card, the engine answers from the
// one look that it had anyway.
struct Inventory {
    std::vector<CertificateRecord> certificates;
    std::size_t unreadable = 0; // certificates that are none
    std::vector<PendingPair> pending;
    std::vector<RetiredPair> retired;
    std::vector<Backup> backups;   // of this card, in the working folder or given by name
    bool own_pair = false;         // it is a services card whose own pair takes a new certificate
    bool services_pending = false; // a request for that certificate is under way
    zv::ByKind<Proposal> next;     // for a new pair

    // The certificate of a kind that ends last; null when there is none.
    [[nodiscard]] const CertificateRecord* current(Kind kind) const;
    // The certificate of a kind with exactly that identifier; null when there is none.
    [[nodiscard]] const CertificateRecord* find(Kind kind, const std::string& id) const;
    [[nodiscard]] const PendingPair* pending_pair(Kind kind) const;
    // Adds a certificate of the card.
    void add(const CardObject& object, Kind kind);
};

// Sorts what a card held when it was opened.
[[nodiscard]] Inventory inventory_of(const OpenedCard& card, const std::string& given_backup = {});

// Takes from the pending pairs those that the inventory's backups say to be what a removal left.
void take_retired(Inventory& inventory, const CardView& view, const std::string& card);

// The identifier for a new pair: the first of the series that no public key has.
[[nodiscard]] Proposal proposal_in(const CardView& view, Kind kind);

using zv::kind_of_certificate, zv::kind_of_pair;

} // namespace zvhost
