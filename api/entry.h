#ifndef ZV_API_ENTRY_H
#define ZV_API_ENTRY_H

#include "api/command_block.h"
#include "routines.h"

/** What the entry points have in common. */
namespace zv {

/** Formats the selected module's path after prefix, logs it and clears szBuffErr again. */
void traceModule(const char* prefix);

/** Puts the crypto library's last reason into szBuffErr. */
void fetchReason();

/** Puts a text into szBuffErr, the crypto library's last reason when none is given; logs it, then the line. Returns code. */
int fail(const char* line, int code, const char* text = nullptr);

/** Logs "Funzione '", the entry point's name and after. */
void traceEntry(const char* function, const char* after);

/**
 * Writes the command block, runs the command unless the block is not faithful, and forgets the PIN. The result
 * is in szBufferDatiOut.
 */
[[nodiscard]] int runCommand(const char* command, const BlockValues& values);

/** Ends a call whose command was not sent or failed. Returns code. */
int failCommand(int code);

/** failCommand for one that there was no memory for. */
int commandWithoutMemory();

} // namespace zv

#endif
