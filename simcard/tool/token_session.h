#pragma once

#include "simcard/common/softhsm.h"
#include "simcard/tool/attributes.h"

#include <optional>
#include <string>
#include <vector>

namespace simcard {

/// A read-write session with a token, straight at SoftHSM: no PIN try is counted here. Closed at the end.
class TokenSession {
  public:
    /// Opens the token with that serial number of SoftHSM's own. @throws CardProblem
    TokenSession(const SoftHsm& hsm, const std::string& token);
    ~TokenSession();
    TokenSession(const TokenSession&) = delete;
    TokenSession& operator=(const TokenSession&) = delete;

    /// Logs the user in; false when the PIN is wrong. @throws CardProblem
    [[nodiscard]] bool login(std::string pin);

    /// Stores an object. @throws CardProblem
    void create(Attributes object);

    /// The objects that the session sees. @throws CardProblem
    [[nodiscard]] std::vector<CK_OBJECT_HANDLE> objects();

    /// An attribute's bytes; nothing when the object has none or does not show it.
    [[nodiscard]] std::optional<std::string> attribute(CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type);

  private:
    const SoftHsm& hsm_;
    CK_SESSION_HANDLE session_ = 0;
};

} // namespace simcard
