#pragma once

#include "pkcs11.h"

namespace zv {

enum class Opening { done = 0, failed = 1, wrong_pin = 2 };

// Closes what is open, loads a module, opens a session on a slot index and logs the user in, unless the PIN is empty. Words
// its failures for the user, but for a wrong PIN: its caller does. A null text is empty.
[[nodiscard]] Opening open_slot_at(unsigned slot_index, const char* pin, const char* module_path,
                                   CK_USER_TYPE user = CKU_USER);

// While a command runs, the slot that its session is opened on. A login by slot index that would reach
// another one is refused: the PIN is for this card.
class CommandSlot {
  public:
    explicit CommandSlot(CK_SLOT_ID slot_id);
    CommandSlot(const CommandSlot&) = delete;
    CommandSlot& operator=(const CommandSlot&) = delete;
    ~CommandSlot();
};

// Why a login that would leave the command's slot is refused, for the log.
inline constexpr char OTHER_SLOT[] = "il nuovo login non raggiungerebbe la stessa carta";

// False when open_slot_at with this index would not reach the command's slot; true when no command runs.
// Asks the module for its slots at most, and leaves zv::rv and the log alone.
[[nodiscard]] bool login_stays(unsigned slot_index);

} // namespace zv
