#pragma once

#include "pkcs11/module.h"

#include <span>

namespace zvfront {

// Whether an object has just the identifier and label that it is to get. The library names a pair once more when it stores its
// certificate; that wears the card, can be broken off half way, and with some modules takes a third of an installation.
[[nodiscard]] bool has_names(const pkcs11::Module& module, CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object,
                             std::span<const CK_ATTRIBUTE> names);

} // namespace zvfront
