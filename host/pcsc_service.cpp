#include "host/pcsc_service.h"

#ifdef __APPLE__
#include <PCSC/winscard.h>
#else
#include <winscard.h>
#endif

#include <algorithm>
#include <cstdint>

namespace zvhost {
namespace {

// Owns a context of the service; none when it does not answer.
class ServiceContext {
  public:
    ServiceContext() : result_(::SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &context_)) {}
    ~ServiceContext() {
        if (result_ == SCARD_S_SUCCESS) (void)::SCardReleaseContext(context_);
    }
    ServiceContext(const ServiceContext&) = delete;
    ServiceContext& operator=(const ServiceContext&) = delete;

    [[nodiscard]] auto result() const { return result_; }
    [[nodiscard]] SCARDCONTEXT get() const { return context_; }

  private:
    SCARDCONTEXT context_ = 0;
    decltype(::SCardReleaseContext(0)) result_;
};

// The names one behind the other, each with its end, and an empty one at the end.
std::vector<std::string> service_names(SCARDCONTEXT context) {
    DWORD size = 0;
    if (::SCardListReaders(context, nullptr, nullptr, &size) != SCARD_S_SUCCESS) return {};
    std::string names(size, '\0');
    if (::SCardListReaders(context, nullptr, names.data(), &size) != SCARD_S_SUCCESS) return {};
    std::vector<std::string> list;
    for (std::size_t at = 0; at < names.size() && names[at] != '\0';) {
        const auto end = std::min(names.find('\0', at), names.size());
        list.push_back(names.substr(at, end - at));
        at = end + 1;
    }
    return list;
}

std::string upper_hex(const unsigned char* bytes, std::size_t count) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text.append({digits[bytes[i] >> 4U], digits[bytes[i] & 0xFU]});
    return text;
}

PcscReader seen_in(const SCARD_READERSTATE& state) {
    PcscReader reader{state.szReader, (state.dwEventState & SCARD_STATE_PRESENT) != 0, {}};
    if (reader.card && (state.dwEventState & SCARD_STATE_MUTE) == 0)
        reader.atr = upper_hex(state.rgbAtr, std::min<std::size_t>(state.cbAtr, sizeof state.rgbAtr));
    return reader;
}

} // namespace

PcscService ask_service() {
    PcscService service;
    const ServiceContext context;
    service.code = static_cast<std::uint32_t>(context.result());
    service.answers = context.result() == SCARD_S_SUCCESS;
    if (!service.answers) return service;
    const std::vector<std::string> names = service_names(context.get());
    std::vector<SCARD_READERSTATE> states(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        states[i].szReader = names[i].c_str();
        states[i].dwCurrentState = SCARD_STATE_UNAWARE;
    }
    if (!states.empty())
        (void)::SCardGetStatusChange(context.get(), 0, states.data(), static_cast<DWORD>(states.size()));
    std::transform(states.begin(), states.end(), std::back_inserter(service.readers), seen_in);
    return service;
}

} // namespace zvhost
