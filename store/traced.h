#pragma once

#include "store/walk.h"

// Calls that record themselves and their outcome in the log, under a title of the caller's.
namespace zv {

void trace_call(const SearchCall& call);
void report_call(const SearchCall& call);

inline constexpr SearchLog TRACED = {trace_call, report_call};

inline constexpr char READ_ERROR[] = "Errore nella lettura chiave sulla smartcard (%s)";

// Reads attributes; a length above its room is CKR_BUFFER_TOO_SMALL.
CK_RV read_traced(const char* title, CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object,
                  std::span<CK_ATTRIBUTE> tmpl);

// FindAnObject, which gives all ones also when its search failed: none is true only after a search that worked
// and found nothing.
[[nodiscard]] unsigned long find_one(CK_SESSION_HANDLE session, std::span<CK_ATTRIBUTE> tmpl,
                                     CK_OBJECT_HANDLE& object, bool& none);

} // namespace zv
