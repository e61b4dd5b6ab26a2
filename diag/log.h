#ifndef ZV_DIAG_LOG_H
#define ZV_DIAG_LOG_H

#include <cstddef>

#include "pkcs11.h"
#include "routines.h"

/** The forms in which steps and failures stand in the log. */
namespace zv {

/** Characters of a sentence for a person. */
constexpr std::size_t SENTENCE_SIZE = 1536;
using Sentence = char[SENTENCE_SIZE];

/** Logs a step with an empty datum. */
void trace(const char* title, const char* step);

/** Logs a step with one datum. */
void trace(const char* title, const char* step, const char* datum);

/** Logs a step with "hSession = " and the session. */
void traceSession(const char* title, const char* step, CK_SESSION_HANDLE session);

/** Logs an object's handle behind the word "hObject", and how many objects were found. */
void traceFound(const char* title, CK_OBJECT_HANDLE object, CK_ULONG count);

/** Logs a failed step with "Errore = " and the code. */
void reportCode(const char* title, const char* step, CK_RV code);

/** Logs a sentence for a person as it is. */
void reportSentence(const char* sentence);

/** Logs a sentence whose "%s" takes the message of the code. */
void reportSentence(const char* format, CK_RV code);

/** reportCode, then reportSentence. */
void reportFailure(const char* title, const char* step, CK_RV code, const char* format);

/** Logs that a guard stopped what was asked for, and why. */
void reportNotSent(const char* reason);

} // namespace zv

#endif
