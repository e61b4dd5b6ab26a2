#include "crypt/pcsc.h"

#include "crypt/failure.h"
#include "crypt/text.h"

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

bool is(std::uint32_t result, long expected) {
    return result == code(expected);
}

// A call to PC/SC that failed.
struct CallFailure {
    const char* function;
    std::uint32_t result;

    // Readers come and go between two calls, and a service that ended is started again: worth another try.
    [[nodiscard]] bool passes() const {
        static constexpr long passing[] = {SCARD_E_INSUFFICIENT_BUFFER, SCARD_E_UNKNOWN_READER,
                                           SCARD_E_READER_UNAVAILABLE,  SCARD_E_INVALID_HANDLE,
                                           SCARD_E_SERVICE_STOPPED,     SCARD_E_NO_SERVICE,
                                           SCARD_F_COMM_ERROR};
        return std::any_of(std::begin(passing), std::end(passing), [&](long one) { return is(result, one); });
    }

    [[noreturn]] void raise() const {
        if (is(result, SCARD_E_NO_SERVICE) || is(result, SCARD_E_SERVICE_STOPPED) ||
            is(result, SCARD_F_COMM_ERROR))
            throw Failure(ZVC_ERR_NO_SERVICE,
                          "Il servizio PC/SC dei lettori di smart card non è attivo o non risponde");
        char text[96];
        (void)std::snprintf(text, sizeof text, "Errore 0x%08X del servizio PC/SC in %s", result, function);
        throw Failure(ZVC_ERR_READER, text);
    }
};

void check(const char* function, long result) {
    if (!is(code(result), SCARD_S_SUCCESS)) throw CallFailure{function, code(result)};
}

class Context {
  public:
    Context() {
        check("SCardEstablishContext",
              ::SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &context_));
    }
    ~Context() { (void)::SCardReleaseContext(context_); }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    [[nodiscard]] SCARDCONTEXT get() const noexcept { return context_; }

  private:
    SCARDCONTEXT context_ = 0;
};

// The names one behind the other, each with its terminator, and an empty one at the end.
std::string name_list(const Context& context) {
    DWORD size = 0;
    auto result = ::SCardListReaders(context.get(), nullptr, nullptr, &size);
    std::string names(is(code(result), SCARD_S_SUCCESS) ? size : 0, '\0');
    if (!names.empty()) result = ::SCardListReaders(context.get(), nullptr, names.data(), &size);
    if (is(code(result), SCARD_E_NO_READERS_AVAILABLE)) return {};
    check("SCardListReaders", result);
    return names;
}

std::vector<std::string> reader_names(const Context& context) {
    const std::string names = name_list(context);
    std::vector<std::string> list;
    for (std::size_t start = 0; start < names.size() && names[start] != '\0';) {
        const auto end = std::min(names.find('\0', start), names.size());
        list.push_back(names.substr(start, end - start));
        start = end + 1;
    }
    return list;
}

PcscReader describe(const SCARD_READERSTATE& state) {
    PcscReader reader;
    reader.name = state.szReader;
    reader.has_card = (state.dwEventState & SCARD_STATE_PRESENT) != 0;
    if (reader.has_card && (state.dwEventState & SCARD_STATE_MUTE) == 0) {
        const auto length = std::min<std::size_t>(state.cbAtr, sizeof state.rgbAtr);
        reader.atr = upper_hex({state.rgbAtr, length});
    }
    return reader;
}

// The readers of that name, or all of them. Only they are waited for: the service takes its time over a card
// that does not answer.
std::vector<PcscReader> ask_once(const std::string* name) {
    const Context context;
    auto names = reader_names(context);
    if (name != nullptr) std::erase_if(names, [&](const std::string& other) { return other != *name; });
    if (names.empty()) return {};
    std::vector<SCARD_READERSTATE> states(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        states[i].szReader = names[i].c_str();
        states[i].dwCurrentState = SCARD_STATE_UNAWARE;
    }
    check("SCardGetStatusChange",
          ::SCardGetStatusChange(context.get(), 0, states.data(), static_cast<DWORD>(states.size())));
    std::vector<PcscReader> readers;
    std::transform(states.begin(), states.end(), std::back_inserter(readers), describe);
    return readers;
}

constexpr int ATTEMPTS = 3;

std::vector<PcscReader> ask(const std::string* name) {
    for (int attempt = 1;; ++attempt) {
        try {
            return ask_once(name);
        } catch (const CallFailure& failure) {
            if (!failure.passes() || attempt == ATTEMPTS) failure.raise();
        }
    }
}

} // namespace

std::vector<PcscReader> pcsc_readers() {
    return ask(nullptr);
}

std::optional<PcscReader> pcsc_reader(const std::string& name) {
    const auto found = ask(&name);
    return found.empty() ? std::nullopt : std::optional(found.front());
}

} // namespace zvcrypt
