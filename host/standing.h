#pragma once

#include "host/card_status.h"
#include "host/inventory.h"
#include "host/journal.h"
#include "host/pin_gate.h"
#include "host/plan.h"
#include "host/renew.h"

#include <string>
#include <vector>

namespace zvhost {

// A certificate that a renewal may replace.
struct Candidate {
    std::string id;
    std::string serial; // the certificate's
    Bytes der;
    std::time_t ends = 0; // 0 when it is not known
};

// Where a renewal is, as the card and the files say it; what this computer remembers is a hint.
struct Standing {
    CardFacts card;
    OnCard now;
    Kind kind = Kind::signature;
    std::string waiting;              // identifier of the pair that waits; empty for none
    bool requested = false;           // the request's file is there, and is that pair's
    Bytes signer;                     // the certificate that signed the request of that file
    std::vector<Candidate> certified; // of the kind, with their keys
    std::vector<Candidate> retired;   // keys that a removal left, and the certificate that they had
    bool marked = false;              // a services card bears the mark of a request
    std::string current;              // identifier of the one that ends last
    bool due = false;
    RememberedRenewal remembered;
    Plan nothing; // that leaves the card as it is

    [[nodiscard]] std::string card_serial() const;
    // The certificate with that identifier; null when there is none.
    [[nodiscard]] const Candidate* certificate(const std::string& id) const;
    // That certificate's serial number; empty when there is none.
    [[nodiscard]] std::string serial_under(const std::string& id) const;
    // Whether an earlier run stored the new certificate and proved it.
    [[nodiscard]] bool was_stored() const;
    // What the pair's certificate replaces: the one that signed the request, that this computer remembers, or the only one
    // that there is beside it. Empty where nothing says it.
    [[nodiscard]] std::string old_of(const std::string& pair) const;
    // When the certificate of that identifier ends; 0 when that is not known.
    [[nodiscard]] std::time_t end_under(const std::string& id) const;
    // Tells that this certificate goes once the new one is proved.
    [[nodiscard]] Sentence removes_later(const std::string& id) const;
    // The pair was made, and its request.
    void note_request(const MadeRequest& made);
    // The pair's certificate was stored, and proved.
    void note_stored(const Installed& installed, const std::string& replaces);
};

// Reads the card as it was opened, the request's file and the journal. @throws Error
[[nodiscard]] Standing find_standing(const RenewalWishes& wishes, const OpenedCard& card);

// The same as far as a card shows it without a login: the request's file is taken for the waiting pair's, the certificate
// that signed it is known by its serial number. @throws Error
[[nodiscard]] Standing standing_shown(const RenewalWishes& wishes, const CardStatus& status,
                                      const Inventory& inventory);

} // namespace zvhost
