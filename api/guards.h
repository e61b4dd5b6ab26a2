#pragma once

#include "api/command_block.h"
#include "kinds.h"

#include <string_view>

// Stops before the card is touched, where a call as given would cost its user a key or a PIN try. A guard
// never changes what is done to the card; each leaves one line in the log that names it.
namespace zv {

// What an entry point was called with, texts without trailing blanks.
struct RequestCall {
    std::string_view pending_label, key_id, subject;
    Kind kind;
    bool discard_pending;
};

struct InstallCall {
    std::string_view pending_label, cert_label;
    Kind kind;
    const char* certificate;
    bool delete_old;
};

// Outcome of a guard: 0 to go on, else the code for the host.
[[nodiscard]] int guard_request(const RequestCall& call);
// Stops a request for a name that dNameRen does not hold as the subject gives it, or for no name at all.
[[nodiscard]] int guard_subject(const RequestCall& call);
[[nodiscard]] int guard_install(const InstallCall& call);

// Stops when the command block in the request buffer, parsed back, does not give the values that went in.
[[nodiscard]] int guard_block(const BlockValues& values);

// True, and logged, when a login with the same PIN is not to be tried again after this result of the dump's
// session.
[[nodiscard]] bool guard_second_login(int dump_result);

} // namespace zv
