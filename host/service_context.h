#pragma once

#include "host/pcsc_service.h"

#ifdef __APPLE__
#include <PCSC/winscard.h>
#else
#include <winscard.h>
#endif

#include <string>
#include <vector>

namespace zvhost {

// Owns a context of the PC/SC service; none when it does not answer.
class ServiceContext {
  public:
    ServiceContext() : result_(::SCardEstablishContext(SCARD_SCOPE_SYSTEM, nullptr, nullptr, &context_)) {}
    ~ServiceContext() {
        if (is_open()) (void)::SCardReleaseContext(context_);
    }
    ServiceContext(const ServiceContext&) = delete;
    ServiceContext& operator=(const ServiceContext&) = delete;

    [[nodiscard]] auto result() const { return result_; }
    [[nodiscard]] bool is_open() const { return result_ == SCARD_S_SUCCESS; }
    [[nodiscard]] SCARDCONTEXT get() const { return context_; }

    // The names of its readers.
    [[nodiscard]] std::vector<std::string> readers() const;

  private:
    SCARDCONTEXT context_ = 0;
    decltype(::SCardReleaseContext(0)) result_;
};

// What to wait with for another state than that.
[[nodiscard]] unsigned long state_to_wait_with(const SCARD_READERSTATE& state);

// A reader as the service has just told its state.
[[nodiscard]] PcscReader seen_in(const SCARD_READERSTATE& state);

} // namespace zvhost
