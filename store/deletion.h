#pragma once

#include "pkcs11.h"

// Removal of objects by their identifier, which the log calls their label.
namespace zv {

// Destroys the first object of a class with exactly that identifier. Returns the result of the call that failed;
// all ones when there is no such object.
CK_RV delete_first(CK_SESSION_HANDLE session, CK_OBJECT_CLASS object_class, const char* id);

// Destroys every object whose identifier contains the text, as far as the card lets it. False when they were not all
// looked at.
[[nodiscard]] bool delete_all_with(CK_SESSION_HANDLE session, const char* text);

// What a new certificate replaces: the old one with its pair, a services card's own, the authority's.
[[nodiscard]] bool delete_certificate_and_keys(CK_SESSION_HANDLE session, const char* id);
[[nodiscard]] CK_RV delete_own_certificate(CK_SESSION_HANDLE session);
CK_RV delete_authority_certificate(CK_SESSION_HANDLE session, const char* id, const char* kind);

} // namespace zv
