#include "cli/heartbeat.h"

#include "cli/status_line.h"
#include "words/words.h"

#include <unistd.h>

#include <string>

namespace cli {
namespace {

using std::chrono::seconds;

} // namespace

Heartbeat::Heartbeat(const Step& step)
    : about_{{"number", long{step.number}}, {"of", long{step.of}}}, line_("card-at-work") {
    if (::isatty(STDERR_FILENO) != 1) return;
    if (step.of > 1) line_ += "-step";
    if (step.usual) {
        line_ += "-before";
        about_.emplace_back("before", long{std::chrono::round<seconds>(*step.usual).count()});
    }
    show(seconds(0));
    thread_ = std::thread([this] { beat(); });
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

void Heartbeat::show(seconds passed) const {
    Values about = about_;
    about.emplace_back("seconds", long{passed.count()});
    show_status_line(words::of(Sentence(line_, about)));
}

void Heartbeat::beat() {
    std::unique_lock waiting(mutex_);
    const auto begun = std::chrono::steady_clock::now();
    while (!changed_.wait_for(waiting, seconds(1), [this] { return over_; }))
        show(std::chrono::round<seconds>(std::chrono::steady_clock::now() - begun));
}

} // namespace cli
