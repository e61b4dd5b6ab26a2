#pragma once

#include "cli/engine.h"
#include "host/progress.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace cli {

// Shows, as long as it lives, that the card is at work and how long it has been: a person who sees nothing takes the card
// out. Nothing of it where standard error is no terminal.
class Heartbeat {
  public:
    explicit Heartbeat(const Step& step);
    ~Heartbeat();
    Heartbeat(const Heartbeat&) = delete;
    Heartbeat& operator=(const Heartbeat&) = delete;

  private:
    void show(std::chrono::seconds passed) const;
    void beat();

    Values about_; // the step
    std::string line_;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool over_ = false;
    std::thread thread_;
};

} // namespace cli
