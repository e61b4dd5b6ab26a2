#include "inventory/host_buffers.h"

#include "util/guarded.h"
#include "util/text.h"
#include "zvRenew.h"

#include <algorithm>

namespace zv {

namespace {

CardState given(const HostBuffers& host) {
    CardState state;
    for (const KindRow& kind : KINDS)
        if (const int* pending = host.kinds[kind.id].pending) state.pairs[kind.id].pending = *pending;
    return state;
}

void write_state(const CardState& state, const HostBuffers& host) {
    for (const KindRow& kind : KINDS) {
        const PairState& pair = state.pairs[kind.id];
        const HostKind& buffers = host.kinds[kind.id];
        if (buffers.pending != nullptr) *buffers.pending = pair.pending;
        copy_text(buffers.id, sizeof pair.id, pair.id);
    }
    if (state.expiry[0] != '\0') copy_text(host.expiry, sizeof state.expiry, state.expiry);
}

void write_record(const std::string& text, char* entry, const HostKind& host) {
    if (host.record == nullptr) {
        append_text(entry, ZV_LIST_ENTRY_SIZE, text);
        return;
    }
    const auto size = static_cast<std::size_t>(std::clamp(host.record_size, 0L, long{ZV_LIST_ENTRY_SIZE}));
    append_text(host.record, size, text);
    append_text(entry, ZV_LIST_ENTRY_SIZE, bounded_text(host.record, size));
    std::fill_n(host.record, size, '\0');
}

void write_list(const CertificateList& certificates, const HostKind& host) {
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
    if (host.last_id != nullptr) std::ranges::copy(id, host.last_id);
}

template <typename Read> int fill_inventory(const HostBuffers& host, Read read) {
    Inventory inventory;
    inventory.state = given(host);
    if (!read(inventory)) return -1;
    for (const KindRow& kind : KINDS)
        write_list(inventory.lists[kind.id], host.kinds[kind.id]);
    write_state(inventory.state, host);
    return 0;
}

} // namespace

int fill_state(const HostBuffers& host, int fallback, int (*read)(CardState&)) {
    CardState state = given(host);
    const int result = guarded(fallback, [&] { return read(state); });
    write_state(state, host);
    return result;
}

int fill_card(HostBuffers host) {
    host.kinds[Kind::services] = {};
    return guarded(-1, [&] { return fill_inventory(host, read_card); });
}

int fill_services_card(const HostBuffers& host) {
    return guarded(-1, [&] {
        return fill_inventory(host, [&](Inventory& inventory) {
            return read_services_card(inventory,
                                      bounded_text(host.kinds[Kind::authentication].last_id, ID_SIZE));
        });
    });
}

} // namespace zv
