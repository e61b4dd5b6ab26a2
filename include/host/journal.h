#pragma once

#include "host/sentence.h"
#include "kinds.h"

#include <chrono>
#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zvhost {

// A certificate, as a card was last seen to hold it.
struct RememberedCertificate {
    zv::Kind kind = zv::Kind::signature;
    std::string id;
    std::string serial; // the certificate's serial number
    std::time_t ends = 0;
    bool replaced = false;   // one of its kind ended later
    std::time_t told_at = 0; // when its holder was last reminded of it; 0: never
};

// A pending pair.
struct RememberedPair {
    zv::Kind kind = zv::Kind::signature;
    std::string id;
};

// The first step of a renewal, which a request is.
inline constexpr const char* RENEWAL_REQUESTED = "requested";

// A renewal under way on a card: from the request until the new certificate is proved and the old one dealt with.
struct RememberedRenewal {
    zv::Kind kind = zv::Kind::signature;
    std::string pair;            // whose certificate is waited for
    std::string step;            // how far it came, in a word of whoever drives it: "requested"
    std::string request;         // the request's file, absolute; empty: it went to none
    std::string replaces;        // identifier of the old certificate; empty: of none
    std::string replaced_serial; // that certificate's serial number
    std::time_t begun = 0;
};

// What this computer's journal says of one card. It holds no name, no tax code and no PIN.
struct RememberedCard {
    std::string serial; // the card's
    bool services_card = false;
    std::time_t seen_at = 0; // when the card was last looked at; 0: never
    std::vector<RememberedCertificate> certificates;
    std::vector<RememberedPair> pending;
    std::vector<RememberedRenewal> renewals;                // at most one of a kind
    std::optional<std::chrono::milliseconds> key_pair_took; // how long it made the last key pair

    // The renewal of that kind; null when none is under way.
    [[nodiscard]] const RememberedRenewal* renewal(zv::Kind kind) const;
    // Whether a pair of that kind waits for its certificate.
    [[nodiscard]] bool is_pending(zv::Kind kind) const;
    // Notes one in the place of what there was of its kind.
    void set_renewal(RememberedRenewal renewal);
    void end_renewal(zv::Kind kind);
};

// What this computer remembers of the cards that it saw: one file a card, in the user's state folder. It is a hint and
// never the truth: another computer may have changed the card since, and nothing is decided on a card by it alone. A file
// that is damaged, or is none of this program's, is as if it was not there.
class Journal {
  public:
    // The user's: zvrenew in $XDG_STATE_HOME, or in ~/.local/state.
    Journal();
    explicit Journal(std::string folder) : folder_(std::move(folder)) {}

    [[nodiscard]] const std::string& folder() const { return folder_; } // empty: the user has no home

    // What is remembered of a card; nothing but its serial number when it is not known.
    [[nodiscard]] RememberedCard card(const std::string& serial) const;
    [[nodiscard]] std::vector<RememberedCard> cards() const;

    // Changes what is remembered of a card, alone among the programs that do so; its file is replaced whole or stays as it
    // was. A card without a serial number is not remembered.
    //
    // @return 0, or the system's error number when the journal could not be written
    int change(const std::string& serial, const std::function<void(RememberedCard&)>& work) const;

  private:
    std::string folder_;
};

// How long a card took to make its last key pair, as this computer's journal knows; none when it does not.
[[nodiscard]] std::optional<std::chrono::milliseconds> key_pair_took(const std::string& card_serial);

// Remembers it. What becomes of that, journal_problem tells.
void remember_key_pair_took(const std::string& card_serial, std::chrono::milliseconds took);

// Why this process could not write the journal. Each is told once: empty when there is nothing more to tell.
[[nodiscard]] Sentence journal_problem();

} // namespace zvhost
