#pragma once

#include "pkcs11.h"
#include "simcard/common/card.h"

#include <sys/stat.h>

#include <optional>
#include <vector>

namespace simcard {

class SoftHsm;

// A slot: the reader, and the card in it as its card.ini says now.
class Slot {
  public:
    Slot(Card card, std::optional<CK_SLOT_ID> token);

    [[nodiscard]] const Card& card() const { return card_; }
    // SoftHSM's slot of the card; none when SoftHSM does not know its token.
    [[nodiscard]] const std::optional<CK_SLOT_ID>& token() const { return token_; }

    // Reads card.ini again when it has changed. Says whether the card was taken out since the last time,
    // even if it is back.
    [[nodiscard]] bool was_taken_out();

  private:
    [[nodiscard]] bool file_changed();

    Card card_;
    std::optional<CK_SLOT_ID> token_;
    struct stat seen_ {};
};

// The slots of a folder of cards, ten at most: their numbers are the indices.
[[nodiscard]] std::vector<Slot> make_slots(const std::vector<Card>& cards, const SoftHsm& hsm);

} // namespace simcard
