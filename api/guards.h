#ifndef ZV_API_GUARDS_H
#define ZV_API_GUARDS_H

#include <string_view>

#include "api/command_block.h"

/**
 * Stops before the card is touched, where a call as given would cost its user a key or a PIN try. A guard
 * never changes what is done to the card; each leaves one line in the log that names it.
 */
namespace zv {

/** What an entry point was called with, texts without trailing blanks. */
struct RequestCall {
    std::string_view pendingLabel, keyId, kind, subject;
    bool discardPending;
};

struct StoringCall {
    std::string_view pendingLabel, certLabel, kind;
    const char* certificate;
    bool deleteOld;
};

/** Outcome of a guard: 0 to go on, else the code for the host. */
[[nodiscard]] int guardRequest(const RequestCall& call);
/** Stops a request for a name that dNameRen does not hold as the subject gives it, or for no name at all. */
[[nodiscard]] int guardSubject(const RequestCall& call);
[[nodiscard]] int guardStoring(const StoringCall& call);

/** Stops when the command block in the request buffer, parsed back, does not give the values that went in. */
[[nodiscard]] int guardBlock(const BlockValues& values);

/** True, and logged, when a login with the same PIN is not to be tried again after this result of the dump's
 * session. */
[[nodiscard]] bool guardSecondLogin(int dumpResult);

} // namespace zv

#endif
