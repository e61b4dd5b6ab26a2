#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace cli {

// Something to show on the desktop. A program of the desktop's own shows it, as a text without markup.
struct Notification {
    std::string summary;
    std::string body;
    bool urgent = false;
    std::string action = {};  // what it offers to do, a word or two; empty: nothing
    std::string subject = {}; // told when that is wanted
};

// The desktop that this program was started in. Where it is told of a problem, the text ends "The desktop ...".
class Desktop {
  public:
    Desktop();
    ~Desktop();
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    // Why nothing can be shown; empty when it can.
    [[nodiscard]] const std::string& problem() const { return problem_; }
    // @return why it was not shown; empty when it was
    [[nodiscard]] std::string show(const Notification& notification);

    using ActedOn = std::function<void(const std::string& subject)>;
    // Waits until all that was shown and offers something is closed or acted on, or the desktop's session ends.
    void await_answers(std::chrono::milliseconds longest, const ActedOn& acted_on);

  private:
    struct Bus;
    std::unique_ptr<Bus> bus_;
    std::string problem_;
};

} // namespace cli
