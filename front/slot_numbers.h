#pragma once

#include "pkcs11.h"

#include <optional>
#include <vector>

namespace zvfront {

// The small numbers that stand for a module's slots: from 0 on, in the order in which the module lists them at first. A
// slot keeps its number as long as the process lives, also while its reader is away: a number that was found out a moment
// ago must not lead a PIN to another reader's card.
class SlotNumbers {
  public:
    // Takes the module's list as it is now.
    void take(const std::vector<CK_SLOT_ID>& listed);

    // The module's slot of that number, and the other way round; none when it is not listed now.
    [[nodiscard]] std::optional<CK_SLOT_ID> slot(CK_SLOT_ID number) const;
    [[nodiscard]] std::optional<CK_SLOT_ID> number(CK_SLOT_ID slot) const;
    // The numbers of what is listed now.
    [[nodiscard]] std::vector<CK_SLOT_ID> numbers() const;

  private:
    struct Slot {
        CK_SLOT_ID id;
        bool listed;
    };
    [[nodiscard]] Slot* find(CK_SLOT_ID id);
    void add(CK_SLOT_ID id);

    std::vector<Slot> slots_; // the index is the number
};

} // namespace zvfront
