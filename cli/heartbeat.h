#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace cli {

// Shows, as long as it lives, that the card is at work and how long it has been: a person who sees nothing takes the card
// out. Nothing of it where standard error is no terminal.
class Heartbeat {
  public:
    // @param before  how long this card took the last time, when that is known
    explicit Heartbeat(std::optional<std::chrono::milliseconds> before);
    ~Heartbeat();
    Heartbeat(const Heartbeat&) = delete;
    Heartbeat& operator=(const Heartbeat&) = delete;

  private:
    void beat();

    std::optional<std::chrono::seconds> before_;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool over_ = false;
    std::thread thread_;
};

} // namespace cli
