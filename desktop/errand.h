#pragma once

#include "host/renew.h"

#include <string>

namespace desktop {

// What a person wants done with the card that is shown.
struct Errand {
    zvhost::CardFacts card;
    zvhost::RenewalWishes wishes;
    std::string certificate; // file of the authority's; empty: it has not come
    bool finishes = false;   // the certificate is on the card

    [[nodiscard]] zvhost::Kind kind() const { return wishes.request.kind; }
    [[nodiscard]] std::string card_serial() const { return card.state ? card.state->serial : ""; }
};

// The authority, as a person stands for it: who hands the request over by other means than this program.
class AuthorityByHand : public zvhost::Authority {
  public:
    explicit AuthorityByHand(std::string certificate) : certificate_(std::move(certificate)) {}

    [[nodiscard]] std::string at_hand() override { return certificate_; }
    [[nodiscard]] std::string ask(const std::string& /*request*/) override { return certificate_; }

  private:
    std::string certificate_;
};

} // namespace desktop
