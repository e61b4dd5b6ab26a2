#pragma once

#include "simcard/common/card.h"
#include "simcard/common/softhsm.h"
#include "simcard/tool/attributes.h"
#include "simcard/tool/secret.h"

#include <optional>
#include <string>
#include <vector>

namespace simcard {

// A read-write session with a token, straight at SoftHSM: no PIN try is counted here. Closed at the end.
class TokenSession {
  public:
    // Opens a card's token. @throws CardProblem
    TokenSession(const SoftHsm& hsm, const Card& card);
    ~TokenSession();
    TokenSession(const TokenSession&) = delete;
    TokenSession& operator=(const TokenSession&) = delete;

    // Logs the user in; false when the PIN is wrong. @throws CardProblem
    [[nodiscard]] bool login(const Secret& pin);

    // Stores an object, as the card's last one. @throws CardProblem
    void create(Attributes object);

    // The objects that the session sees. @throws CardProblem
    [[nodiscard]] std::vector<CK_OBJECT_HANDLE> objects();

    // An attribute's bytes; nothing when the object has none or does not show it.
    [[nodiscard]] std::optional<std::string> attribute(CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type);

  private:
    const SoftHsm& hsm_;
    std::filesystem::path folder_;
    CK_SESSION_HANDLE session_ = 0;
};

} // namespace simcard
