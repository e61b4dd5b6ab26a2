/**
 * Every exported routine below the entry points of zvRenew.h, for hosts and tests that drive single steps.
 * C++; C linkage.
 *
 * Conventions
 *
 *  1. Texts are NUL-terminated. "n bytes" is the room of a buffer, terminator included; "n characters" is
 *     what a text holds, terminator not counted. A text that does not fit is cut unless the routine says
 *     otherwise.
 *  2. Buffers belong to the caller; only UnEscape and the DER pieces (ADATA) are for the caller to free. A
 *     routine that returns a buffer of the process says so: its text is valid until the next routine that
 *     shares the buffer.
 *  3. Null means something only where it is stated. Elsewhere a routine that is given it fails, does nothing
 *     or takes it as empty. A `void*` first argument is not read.
 *  4. Card routines work on the one session that __Initialize or inizializza opened; a `session` argument is
 *     a handle of the same module. Without a module each call to the card answers
 *     CKR_CRYPTOKI_NOT_INITIALIZED. "Pending label", "certificate label", "keep flag" and "subject" are those
 *     of the last command block (miExecCmd).
 *  5. A failure, unless the routine says otherwise, leaves the card and the output arguments as they were,
 *     the session open, and the search that the routine started closed. What a routine leaves holds for those
 *     that call it.
 *  6. Card routines log their steps and failures in the user's log (getLogPath); those that log nothing say
 *     so. A sentence for a person stands there under "Messaggio di Errore". Routines on texts and DER pieces
 *     log only where they say so.
 *  7. PKCS#11 results (CKR_...) and attributes are those of pkcs11.h (PKCS#11 version 2); a result is that of
 *     the call that failed. Kinds of certificate are "PRA" (signature), "AUT" (authentication) and "CNS" (a
 *     services card's own).
 *  8. Calls must not overlap. No exception leaves a routine.
 */
#ifndef ZV_ROUTINES_H
#define ZV_ROUTINES_H

#include "routines/api.h"
#include "routines/card.h"
#include "routines/diag.h"
#include "routines/install.h"
#include "routines/inventory.h"
#include "routines/request.h"
#include "routines/store.h"
#include "routines/util.h"

#endif
