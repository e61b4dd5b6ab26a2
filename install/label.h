#pragma once

#include "pkcs11.h"

// The one text that a certificate and its pair have as CKA_ID and as CKA_LABEL: the final one once the certificate is
// installed, the pending one again when it cannot be.
namespace zv {

extern char crtLabel[256]; // of the certificate that is written

// Fills crtLabel and the lengths of the two entries that point there.
void label_certificate(CK_ATTRIBUTE& id, CK_ATTRIBUTE& label, const char* text);

// Gives the pending pair, as it was found, its text. Returns 0 or ZV_FAILED.
[[nodiscard]] int label_pair(const char* text);

// Gives every object with a label another text. Returns 0 or ZV_FAILED.
int change_labels(const char* current, const char* text);

// False for a module whose keys keep their text. Both lower-case the module's path in place; null is any module.
[[nodiscard]] bool may_label_pair(char* module_path);
[[nodiscard]] bool may_label_back(char* module_path);

} // namespace zv
