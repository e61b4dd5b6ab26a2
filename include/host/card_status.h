#pragma once

#include "exit_codes.h"
#include "host/card_list.h"

#include <ctime>
#include <string>
#include <vector>

namespace zvhost {

// How it stands with a card, by what it shows without a PIN.
struct CardStatus {
    CardList list;
    std::vector<std::string> uncertified; // a card's first keys whose certificate does not show
    zv::ExitCode exit = zv::ExitCode::done;
    // Of a services card, by this computer's journal: a request for its own certificate is under way, which the card does
    // not show.
    bool services_pending = false;
};

// Looks at a card without a login.
//
// @param days  a certificate is due when it ends within so many
// @throws Error, also when the card shows that there is something, but nothing that ends
[[nodiscard]] CardStatus look_at_card(const CardChoice& choice, int days);

// A renewal that is under way: its certificate is waited for or, where the card has that already, something is left to do.
struct WaitingRenewal {
    Kind kind = Kind::signature;
    std::string pair; // whose certificate it is
    // As this computer's journal has them; empty and 0 where it does not know of the pair.
    std::string request;   // the request's file, absolute; it need not be there any more
    std::string replaces;  // identifier of the old certificate
    std::time_t begun = 0; // when the request was made
    std::string stored;    // the certificate in DER, where it is on the card; it may not have been proved
    bool proved = false;   // it was; what is left is the old one
};

// What waits on a card that was looked at, the pair that the next request would take first of its kind; then what this
// computer's journal has of certificates that are on the card, and not due.
[[nodiscard]] std::vector<WaitingRenewal> waiting_renewals(const CardStatus& status);

// Kinds of which a certificate on the card is due, and none is waited for.
[[nodiscard]] std::vector<Kind> renewals_due(const CardStatus& status);

} // namespace zvhost
