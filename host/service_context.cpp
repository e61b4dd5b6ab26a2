#include "host/service_context.h"

#include <algorithm>

namespace zvhost {
namespace {

std::string upper_hex(const unsigned char* bytes, std::size_t count) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text.append({digits[bytes[i] >> 4U], digits[bytes[i] & 0xFU]});
    return text;
}

} // namespace

// The names one behind the other, each with its end, and an empty one at the end.
std::vector<std::string> ServiceContext::readers() const {
    DWORD size = 0;
    if (::SCardListReaders(context_, nullptr, nullptr, &size) != SCARD_S_SUCCESS) return {};
    std::string names(size, '\0');
    if (::SCardListReaders(context_, nullptr, names.data(), &size) != SCARD_S_SUCCESS) return {};
    std::vector<std::string> list;
    for (std::size_t at = 0; at < names.size() && names[at] != '\0';) {
        const auto end = std::min(names.find('\0', at), names.size());
        list.push_back(names.substr(at, end - at));
        at = end + 1;
    }
    return list;
}

unsigned long state_to_wait_with(const SCARD_READERSTATE& state) {
    return state.dwEventState & ~static_cast<DWORD>(SCARD_STATE_CHANGED);
}

PcscReader seen_in(const SCARD_READERSTATE& state) {
    PcscReader reader{
        state.szReader, (state.dwEventState & SCARD_STATE_PRESENT) != 0, {}, state_to_wait_with(state)};
    if (reader.card && (state.dwEventState & SCARD_STATE_MUTE) == 0)
        reader.atr = upper_hex(state.rgbAtr, std::min<std::size_t>(state.cbAtr, sizeof state.rgbAtr));
    return reader;
}

} // namespace zvhost
