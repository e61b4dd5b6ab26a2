#pragma once

#include "host/pcsc_service.h"
#include "host/service_context.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace zvhost {

// Waits for the readers of the PC/SC service, and the cards in them, to become others.
class ServiceWatch {
  public:
    // Waits until the service has something else to tell than this, until wake(), or so long.
    void wait(const PcscService& known, std::chrono::milliseconds at_most);
    // Ends the wait that is under way, else the next one. From any thread.
    void wake();

  private:
    [[nodiscard]] bool begin();
    void end();
    // How long there is to wait without the service, once it was asked.
    [[nodiscard]] std::chrono::milliseconds ask(const PcscService& known, std::chrono::milliseconds at_most);
    [[nodiscard]] std::chrono::milliseconds ask(const ServiceContext& context,
                                                std::vector<SCARD_READERSTATE>& states,
                                                std::chrono::milliseconds at_most);

    std::mutex mutex_;
    std::condition_variable woken_at_, ended_at_;
    SCARDCONTEXT asked_ = 0; // of the call that is under way
    bool waiting_ = false, woken_ = false;
};

} // namespace zvhost
