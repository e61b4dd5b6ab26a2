#pragma once

#include "inventory/inventory.h"

// The buffers that a host gives the inventory; those that are null are ones that nobody reads.
namespace zv {

// For the certificates of one kind; record is cut to and cleared in a work buffer, if there is one.
struct HostList {
    char** list = nullptr;
    char* description = nullptr; // of the last one
    char* id = nullptr;          // of the last one
    char* record = nullptr;
    long record_size = 0;
};

struct HostState {
    int* pending_pra = nullptr;
    int* pending_aut = nullptr;
    char* ckaid_pra = nullptr;
    char* ckaid_aut = nullptr;
    int* pending_cns = nullptr;
    char* expiry = nullptr;
};

// Reads a card's state; the flags are taken from the host before and given back with the rest, whatever came of it.
// Returns what read returned, or fallback without memory.
[[nodiscard]] int fill_state(const HostState& host, int fallback, int (*read)(CardState&));

struct HostInventory {
    HostList pra = {}, aut = {}, cns = {}; // cns of a services card alone
    HostState state = {};
};

// Reads an inventory into a host's buffers. Returns 0; -1, nothing written, when it could not be read.
[[nodiscard]] int fill_card(HostInventory host);
[[nodiscard]] int fill_services_card(const HostInventory& host);

} // namespace zv
