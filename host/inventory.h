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

// What the library's reading of a card gave.
struct Inventory {
    std::vector<CertificateRecord> certificates;
    std::size_t unreadable = 0; // records that could not be taken apart
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
};

// Reads the card with the library.
//
// The library reports at most one pending pair; the view, read by this program itself, adds the others, and the
// backups tell what does not wait.
//
// @throws Error
[[nodiscard]] Inventory read_inventory(OpenedCard& card, const CardView& view,
                                       const std::string& given_backup = {});

// Takes from the pending pairs those that the inventory's backups say to be what a removal left.
void take_retired(Inventory& inventory, const CardView& view, const std::string& card);

// Takes a key text of the library: one without a digit ("DS") means that the series is full.
[[nodiscard]] Proposal as_proposal(const std::string& key_text);

using zv::kind_of_certificate, zv::kind_of_pair;

} // namespace zvhost
