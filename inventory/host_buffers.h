#pragma once

#include "inventory/inventory.h"

// The buffers that a host gives the inventory; those that are null are ones that nobody reads.
namespace zv {

// For one kind of certificate: its list, whether a pair waits, that pair's identifier or a free one; the
// last certificate's holder and identifier; a work buffer that records are cut to and cleared in.
struct HostKind {
    char** list = nullptr;
    int* pending = nullptr;
    char* id = nullptr;
    char* description = nullptr;
    char* last_id = nullptr;
    char* record = nullptr;
    long record_size = 0;
};

struct HostBuffers {
    ByKind<HostKind> kinds = {};
    char* expiry = nullptr;
};

// Reads a card's state; the flags are taken from the host before and given back with the rest, whatever came of it.
// Returns what read returned, or fallback without memory.
[[nodiscard]] int fill_state(const HostBuffers& host, int fallback, int (*read)(CardState&));

// Reads an inventory into a host's buffers. Returns 0; -1, nothing written, when it could not be read.
[[nodiscard]] int fill_card(HostBuffers host);
[[nodiscard]] int fill_services_card(const HostBuffers& host);

} // namespace zv
