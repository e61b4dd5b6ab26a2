#include "host/service_watch.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace zvhost {
namespace {

using std::chrono::milliseconds;

// Stands for the readers that may come.
constexpr const char* READERS_TO_COME = R"(\\?PnP?\Notification)";

constexpr milliseconds BETWEEN_CALLS{20};
constexpr milliseconds NO_TIME{0}, AFTER_A_FAILURE{1000};

SCARD_READERSTATE watched(const char* reader, unsigned long state) {
    SCARD_READERSTATE watched{};
    watched.szReader = reader;
    watched.dwCurrentState = static_cast<DWORD>(state);
    return watched;
}

std::vector<SCARD_READERSTATE> states_of(const PcscService& known) {
    std::vector<SCARD_READERSTATE> states;
    for (const PcscReader& reader : known.readers)
        states.push_back(watched(reader.name.c_str(), reader.state));
    return states;
}

// Not every service knows of it.
void add_readers_to_come(const ServiceContext& context, std::vector<SCARD_READERSTATE>& states) {
    SCARD_READERSTATE now = watched(READERS_TO_COME, SCARD_STATE_UNAWARE);
    (void)::SCardGetStatusChange(context.get(), 0, &now, 1);
    if ((now.dwEventState & (SCARD_STATE_UNKNOWN | SCARD_STATE_IGNORE)) != 0) return;
    states.push_back(watched(READERS_TO_COME, state_to_wait_with(now)));
}

bool are_its_readers(const PcscService& known, const std::vector<std::string>& names) {
    return std::equal(names.begin(), names.end(), known.readers.begin(), known.readers.end(),
                      [](const std::string& name, const PcscReader& reader) { return reader.name == name; });
}

} // namespace

void ServiceWatch::wait(const PcscService& known, milliseconds at_most) {
    if (begin()) {
        const milliseconds alone = ask(known, at_most);
        std::unique_lock lock(mutex_);
        (void)woken_at_.wait_for(lock, alone, [this] { return woken_; });
    }
    end();
}

// The service does not hear a call that comes just before it is asked.
void ServiceWatch::wake() {
    std::unique_lock lock(mutex_);
    woken_ = true;
    woken_at_.notify_all();
    while (waiting_ && woken_) {
        if (asked_ != 0) (void)::SCardCancel(asked_);
        (void)ended_at_.wait_for(lock, BETWEEN_CALLS);
    }
}

bool ServiceWatch::begin() {
    const std::lock_guard lock(mutex_);
    waiting_ = true;
    return !woken_;
}

void ServiceWatch::end() {
    const std::lock_guard lock(mutex_);
    waiting_ = woken_ = false;
    ended_at_.notify_all();
}

milliseconds ServiceWatch::ask(const PcscService& known, milliseconds at_most) {
    const ServiceContext context;
    if (context.is_open() != known.answers) return NO_TIME;
    if (!context.is_open()) return at_most;
    std::vector<SCARD_READERSTATE> states = states_of(known);
    add_readers_to_come(context, states);
    if (!are_its_readers(known, context.readers())) return NO_TIME;
    return states.empty() ? at_most : ask(context, states, at_most);
}

milliseconds ServiceWatch::ask(const ServiceContext& context, std::vector<SCARD_READERSTATE>& states,
                               milliseconds at_most) {
    {
        const std::lock_guard lock(mutex_);
        if (woken_) return NO_TIME;
        asked_ = context.get();
    }
    const auto result =
        static_cast<std::uint32_t>(::SCardGetStatusChange(context.get(), static_cast<DWORD>(at_most.count()),
                                                          states.data(), static_cast<DWORD>(states.size())));
    const std::lock_guard lock(mutex_);
    asked_ = 0;
    for (const auto told : {SCARD_S_SUCCESS, SCARD_E_TIMEOUT, SCARD_E_CANCELLED})
        if (result == static_cast<std::uint32_t>(told)) return NO_TIME;
    return std::min(at_most, AFTER_A_FAILURE);
}

} // namespace zvhost
