#pragma once

#include "pkcs11.h"

#include <optional>

namespace zv {

// Who is logged in. A command's session holds its slot: a login that would reach another one is refused, as
// the PIN is for this card. Null texts are empty.
struct LoginData {
    const char* module_path;
    const char* pin;
    std::optional<CK_SLOT_ID> only_slot = {};
};

enum class Opening { done = 0, failed = 1, wrong_pin = 2 };

// Closes what is open, loads a module, opens a session on a slot index and logs the user in, unless the PIN
// is empty. Words its failures for the user, but for a wrong PIN: its caller does.
[[nodiscard]] Opening open_slot_at(unsigned slot_index, const LoginData& who, CK_USER_TYPE user = CKU_USER);

// Why a login that would leave its slot is refused, for the log.
inline constexpr char OTHER_SLOT[] = "il nuovo login non raggiungerebbe la stessa carta";

// False when open_slot_at with this index would not reach the only slot. Asks the module for its slots at
// most, and leaves zv::rv and the log alone.
[[nodiscard]] bool login_stays(unsigned slot_index, const LoginData& who);

} // namespace zv
