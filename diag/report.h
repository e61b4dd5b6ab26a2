#pragma once

#include "pkcs11.h"

#include <cstddef>

// The forms in which steps and failures stand in the log.
namespace zv {

// Characters of a sentence for a person.
constexpr std::size_t SENTENCE_SIZE = 1536;
using Sentence = char[SENTENCE_SIZE];

// Logs a step with a datum; none for null.
void trace(const char* title, const char* step, const char* datum = "");

// Logs a step with "hSession = " and the session.
void trace_session(const char* title, const char* step, CK_SESSION_HANDLE session);

// Logs an object's handle behind the word "hObject", and how many objects were found.
void trace_found(const char* title, CK_OBJECT_HANDLE object, CK_ULONG count);

// Logs a failed step with "Errore = " and the code.
void report_code(const char* title, const char* step, CK_RV code);

// Logs a sentence for a person as it is.
void report_sentence(const char* sentence);

// Logs a sentence whose "%s" takes the message of the code.
void report_sentence(const char* format, CK_RV code);

// report_code, then report_sentence.
void report_failure(const char* title, const char* step, CK_RV code, const char* format);

// Logs that a guard stopped what was asked for, and why.
void report_not_sent(const char* reason);

} // namespace zv
