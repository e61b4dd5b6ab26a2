#include "cli/heartbeat.h"

#include "cli/engine.h"
#include "cli/status_line.h"
#include "words/words.h"

#include <unistd.h>

#include <string>

namespace cli {
namespace {

using std::chrono::seconds;

std::string line_after(seconds passed, std::optional<seconds> before) {
    Sentence line("card-at-work", {{"seconds", long{passed.count()}}});
    if (before)
        line = {"card-at-work-before",
                {{"seconds", long{passed.count()}}, {"before", long{before->count()}}}};
    return words::of(line);
}

} // namespace

Heartbeat::Heartbeat(std::optional<std::chrono::milliseconds> before) {
    if (before) before_ = std::chrono::round<seconds>(*before);
    if (::isatty(STDERR_FILENO) == 1) thread_ = std::thread([this] { beat(); });
}

Heartbeat::~Heartbeat() {
    if (!thread_.joinable()) return;
    {
        const std::lock_guard changing(mutex_);
        over_ = true;
    }
    changed_.notify_one();
    thread_.join();
    clear_status_line();
}

void Heartbeat::beat() {
    std::unique_lock waiting(mutex_);
    const auto begun = std::chrono::steady_clock::now();
    while (!over_) {
        const auto passed = std::chrono::round<seconds>(std::chrono::steady_clock::now() - begun);
        show_status_line(line_after(passed, before_));
        changed_.wait_for(waiting, seconds(1), [this] { return over_; });
    }
}

} // namespace cli
