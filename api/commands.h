#pragma once

#include "pkcs11.h"
#include "records.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

// The commands that a block can carry. They return 0, with a terminated text in out, or a code with out as it was:
// ZV_NOT_SENT for a text that does not fit, the session's or the machinery's.
namespace zv {

// The slot that a command's session is opened on, and that a new login may not leave; none outside a command.
using CommandSlot = std::optional<CK_SLOT_ID>;

// Runs "REQREN" (renew) or "REQSCA" (replace_or_keep) with what the block says, and closes the session.
[[nodiscard]] int run_block(std::string_view command, std::string_view block, std::span<char> out);

// Opens the session and makes a request, in PEM.
[[nodiscard]] int renew(REQRENIN& record, std::span<char> out, CommandSlot only_slot);

// The same in the session that is open.
[[nodiscard]] int request_record(REQRENIN& record, std::span<char> out, CommandSlot only_slot);

// Opens the session, deletes what is replaced unless it is kept, and installs the certificate.
[[nodiscard]] int replace_or_keep(REQRENIN& record, std::span<char> out);

// Installs the certificate in the session that is open.
[[nodiscard]] int install_record(REQRENIN& record, std::span<char> out);

// Breaks the lines of a text in a buffer as large as `buffer`, after 64 characters each. Returns its length.
std::size_t break_lines(char* text);

} // namespace zv
