#ifndef ZV_API_ENTRY_H
#define ZV_API_ENTRY_H

#include "routines.h"

/** What the entry points have in common. */
namespace zv {

/** Formats the selected module's path after prefix, logs it and clears szBuffErr again. */
void traceModule(const char* prefix);

/** Logs szBuffErr, then the line. Returns code. */
int fail(const char* line, int code);

/** Puts a text into szBuffErr, then as fail. */
int failWith(const char* text, const char* line, int code);

/** Puts the crypto library's last reason into szBuffErr, then as fail. */
int failWithReason(const char* line, int code);

/** Overwrites the PIN in the request buffer. */
void wipePin();

} // namespace zv

#endif
