#pragma once

#include "simcard/common/card.h"
#include "simcard/module/call.h"

namespace simcard {

// The space that a call takes on a card or gives back: token objects, and their bytes, which are those of a
// certificate or of data and those of a key's numbers.
class Space {
  public:
    // A call as SoftHSM gets it, on a session of SoftHSM's.
    Space(const Card& card, const Call& call, CK_SESSION_HANDLE session);

    // How many token objects the call is to make.
    [[nodiscard]] CK_ULONG objects() const { return objects_; }
    // Whether the card has as much.
    [[nodiscard]] bool is_there() const;
    // Keeps the account, once the call is done.
    void settle() const;

  private:
    const Card& card_;
    CK_ULONG objects_ = 0;
    CK_ULONG taken_ = 0;
    CK_ULONG given_back_ = 0;
};

} // namespace simcard
