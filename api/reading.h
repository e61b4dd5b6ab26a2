#pragma once

#include "kinds.h"

namespace zv {

// A host's buffers for one kind of certificate; each may be null.
struct KindBuffers {
    char** list = nullptr;
    int* pending = nullptr;
    char* key = nullptr; // of a pair that waits, or of a new one
};

using Reading = ByKind<KindBuffers>;

// Detects the card and lists what it holds. A null reader is the first that holds a card.
[[nodiscard]] int read_certificates(const Reading& buffers, char* reader, char* pin, const char* module_dir);

// Finds the identifiers for new pairs.
[[nodiscard]] int find_free_identifiers(const Reading& buffers, char* reader, char* pin);

// Ends a reading that there was no memory for.
int close_unusable();

} // namespace zv
