#include "inventory/host_buffers.h"

#include "util/guarded.h"
#include "util/text.h"
#include "zvRenew.h"

#include <algorithm>

namespace zv {

namespace {

CardState given(const HostState& host) {
    CardState state;
    const auto flag = [](const int* pending) { return pending != nullptr ? *pending : 0; };
    state.signature.pending = flag(host.pending_pra);
    state.authentication.pending = flag(host.pending_aut);
    state.own_pending = flag(host.pending_cns);
    return state;
}

void write_pair(const PairState& pair, int* pending, char* id) {
    if (pending != nullptr) *pending = pair.pending;
    copy_text(id, sizeof pair.id, pair.id);
}

void write_state(const CardState& state, const HostState& host) {
    write_pair(state.signature, host.pending_pra, host.ckaid_pra);
    write_pair(state.authentication, host.pending_aut, host.ckaid_aut);
    if (host.pending_cns != nullptr) *host.pending_cns = state.own_pending;
    if (state.expiry[0] != '\0') copy_text(host.expiry, sizeof state.expiry, state.expiry);
}

void write_record(const std::string& text, char* entry, const HostList& host) {
    if (host.record == nullptr) {
        append_text(entry, ZV_LIST_ENTRY_SIZE, text);
        return;
    }
    const auto size = static_cast<std::size_t>(std::clamp(host.record_size, 0L, long{ZV_LIST_ENTRY_SIZE}));
    append_text(host.record, size, text);
    append_text(entry, ZV_LIST_ENTRY_SIZE, bounded_text(host.record, size));
    std::fill_n(host.record, size, '\0');
}

void write_list(const CertificateList& certificates, const HostList& host) {
    if (host.list != nullptr) {
        for (std::size_t i = 0; i < certificates.records.size(); ++i)
            write_record(certificates.records[i], host.list[i + 1], host);
        append_text(host.list[0], ZV_LIST_ENTRY_SIZE, std::to_string(certificates.records.size()));
        char* first = host.list[1];
        if (certificates.mark && first != nullptr && first[0] != '\0') {
            append_text(first, ZV_LIST_ENTRY_SIZE, "#");
            append_text(first, ZV_LIST_ENTRY_SIZE, *certificates.mark);
        }
    }
    if (!certificates.last) return;
    const auto& [description, id] = *certificates.last;
    if (host.description != nullptr) std::ranges::copy(description, host.description);
    if (host.id != nullptr) std::ranges::copy(id, host.id);
}

template <typename Read> int fill_inventory(const HostInventory& host, Read read) {
    Inventory inventory;
    inventory.state = given(host.state);
    if (!read(inventory)) return -1;
    write_list(inventory.signature, host.pra);
    write_list(inventory.authentication, host.aut);
    write_list(inventory.own, host.cns);
    write_state(inventory.state, host.state);
    return 0;
}

} // namespace

int fill_state(const HostState& host, int fallback, int (*read)(CardState&)) {
    CardState state = given(host);
    const int result = guarded(fallback, [&] { return read(state); });
    write_state(state, host);
    return result;
}

int fill_card(HostInventory host) {
    host.cns = {};
    return guarded(-1, [&] { return fill_inventory(host, read_card); });
}

int fill_services_card(const HostInventory& host) {
    return guarded(-1, [&] {
        return fill_inventory(host, [&](Inventory& inventory) {
            return read_services_card(inventory, bounded_text(host.aut.id, ID_SIZE));
        });
    });
}

} // namespace zv
