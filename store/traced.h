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

// Asks an open search for as many objects as there is room for.
CK_RV find_traced(const char* title, CK_SESSION_HANDLE session, std::span<CK_OBJECT_HANDLE> room,
                  CK_ULONG* found);

// A search for the first object, whose class is read: what failed; all ones when nothing was found, or the search could
// not be ended.
struct Found {
    CK_RV code;
    CK_OBJECT_HANDLE object = 0;
    bool none = false; // the search worked and found nothing
};

[[nodiscard]] Found find_one(CK_SESSION_HANDLE session, std::span<CK_ATTRIBUTE> tmpl);

} // namespace zv
