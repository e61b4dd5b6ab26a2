#include "cli/waiting.h"

#include "cli/ending_signals.h"
#include "cli/note.h"
#include "host/error.h"
#include "words/words.h"

#include <memory>
#include <string>

namespace cli {
namespace {

using Clock = std::chrono::steady_clock;

class OneWait {
  public:
    explicit OneWait(std::optional<std::chrono::seconds> longest) {
        if (longest) until_ = Clock::now() + *longest;
    }

    [[nodiscard]] bool go_on(const Sentence& missing) {
        if (until_ && Clock::now() >= *until_) return false;
        say(words::of(missing));
        if (!signals_.sleep(std::chrono::seconds(1)))
            throw Error(Exit::refused, Sentence("stopped-waiting", {}));
        return true;
    }

  private:
    void say(const std::string& missing) {
        if (missing != said_) note(Sentence("waits-for-card", {{"missing", missing}}));
        said_ = missing;
    }

    EndingSignals signals_;
    std::optional<Clock::time_point> until_;
    std::string said_;
};

} // namespace

std::function<bool(const Sentence&)> waiting(std::optional<std::chrono::seconds> longest) {
    // Begun in the copy that is called, so that the signals are noticed that long.
    return [longest, wait = std::shared_ptr<OneWait>()](const Sentence& missing) mutable {
        if (!wait) wait = std::make_shared<OneWait>(longest);
        return wait->go_on(missing);
    };
}

} // namespace cli
