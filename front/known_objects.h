#pragma once

#include "pkcs11.h"

#include <set>
#include <utility>

namespace zvfront {

// The handles of a module's objects, as it gave them since its start. There are modules that give a new object the handle of
// one that is there already when something was destroyed before, and then take one object for the other until their end.
class KnownObjects {
  public:
    void found(CK_SLOT_ID slot, CK_OBJECT_HANDLE object) { handles_.emplace(slot, object); }
    void destroyed(CK_SLOT_ID slot, CK_OBJECT_HANDLE object) { handles_.erase({slot, object}); }
    void made(CK_SLOT_ID slot, CK_OBJECT_HANDLE object) {
        mixed_up_ = !handles_.emplace(slot, object).second || mixed_up_;
    }

    // Whether a new object got the handle of another.
    [[nodiscard]] bool mixed_up() const { return mixed_up_; }

  private:
    std::set<std::pair<CK_SLOT_ID, CK_OBJECT_HANDLE>> handles_;
    bool mixed_up_ = false;
};

} // namespace zvfront
