#include "pcsc.h"

#include "failure.h"
#include "text.h"

#ifdef __APPLE__
#include <PCSC/winscard.h>
#else
#include <winscard.h>
#endif

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace zvcrypt {
namespace {

// PC/SC codes are 32 bits wide; the type that carries them is not, and its sign differs between platforms.
std::uint32_t code(long result) {
    return static_cast<std::uint32_t>(result);
}

bool is(long result, long expected) {
    return code(result) == code(expected);
}

[[noreturn]] void fail(const char* function, long result) {
    if (is(result, SCARD_E_NO_SERVICE) || is(result, SCARD_E_SERVICE_STOPPED))
        throw Failure(ZVC_ERR_NO_SERVICE, "Il servizio PC/SC dei lettori di smart card non è attivo");
    char text[96];
    (void)std::snprintf(text, sizeof text, "Errore 0x%08X del servizio PC/SC in %s", code(result), function);
    throw Failure(ZVC_ERR_READER, text);
}

class Context {
  public:
    Context() {
        const auto result = ::SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &context_);
        if (!is(result, SCARD_S_SUCCESS)) fail("SCardEstablishContext", result);
    }
    ~Context() { (void)::SCardReleaseContext(context_); }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    [[nodiscard]] SCARDCONTEXT get() const noexcept { return context_; }

  private:
    SCARDCONTEXT context_ = 0;
};

// Readers come and go: a list or a state that changed between two calls is asked for once more.
constexpr int attempts = 3;

std::vector<std::string> readerNames(const Context& context) {
    for (int attempt = 1;; ++attempt) {
        DWORD size = 0;
        auto result = ::SCardListReaders(context.get(), nullptr, nullptr, &size);
        std::string names(is(result, SCARD_S_SUCCESS) ? size : 0, '\0');
        if (is(result, SCARD_S_SUCCESS) && size > 0)
            result = ::SCardListReaders(context.get(), nullptr, names.data(), &size);
        if (is(result, SCARD_E_NO_READERS_AVAILABLE)) return {};
        if (is(result, SCARD_E_INSUFFICIENT_BUFFER) && attempt < attempts) continue;
        if (!is(result, SCARD_S_SUCCESS)) fail("SCardListReaders", result);
        std::vector<std::string> list;
        for (std::size_t start = 0; start < names.size() && names[start] != '\0';) {
            const auto end = std::min(names.find('\0', start), names.size());
            list.push_back(names.substr(start, end - start));
            start = end + 1;
        }
        return list;
    }
}

PcscReader describe(const SCARD_READERSTATE& state) {
    PcscReader reader;
    reader.name = state.szReader;
    reader.hasCard = (state.dwEventState & SCARD_STATE_PRESENT) != 0;
    if (reader.hasCard) {
        const auto length = std::min<std::size_t>(state.cbAtr, sizeof state.rgbAtr);
        reader.atr = upperHex({state.rgbAtr, length});
    }
    return reader;
}

} // namespace

std::vector<PcscReader> pcscReaders() {
    const Context context;
    for (int attempt = 1;; ++attempt) {
        const auto names = readerNames(context);
        if (names.empty()) return {};
        std::vector<SCARD_READERSTATE> states(names.size());
        for (std::size_t i = 0; i < names.size(); ++i) {
            states[i].szReader = names[i].c_str();
            states[i].dwCurrentState = SCARD_STATE_UNAWARE;
        }
        const auto result =
            ::SCardGetStatusChange(context.get(), 0, states.data(), static_cast<DWORD>(states.size()));
        if (is(result, SCARD_E_UNKNOWN_READER) && attempt < attempts) continue;
        if (!is(result, SCARD_S_SUCCESS)) fail("SCardGetStatusChange", result);
        std::vector<PcscReader> readers;
        std::transform(states.begin(), states.end(), std::back_inserter(readers), describe);
        return readers;
    }
}

} // namespace zvcrypt
