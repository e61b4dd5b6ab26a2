#pragma once

#include "host/sentence.h"

#include <chrono>
#include <optional>

namespace zvhost {

// A part of the work that cannot be broken off.
struct Step {
    explicit Step(Sentence does, std::optional<std::chrono::milliseconds> usually = {})
        : what(std::move(does)), usual(usually) {}

    Sentence what;
    int number = 1;                                 // this one
    int of = 1;                                     // so many there are
    std::optional<std::chrono::milliseconds> usual; // how long this card took for it before
};

// What a plan that is carried out tells whoever shows it. It is called by the thread that carries out the plan, which
// waits for it.
class Progress {
  public:
    Progress() = default;
    virtual ~Progress() = default;
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Something that a person should know before it happens.
    virtual void notice(const Sentence& sentence) { (void)sentence; }
    // From here on the card is changed: who is ended now may leave it without what it had.
    virtual void changing() {}
    // A step begins. It is over when the next one begins, or when the call returns.
    virtual void step(const Step& step) { (void)step; }
    // No step is under way until the next one begins: the card rests, and what is waited for is somebody else.
    virtual void rests() {}
    // Asked between two steps: whether to stop there. What was begun is never left half done.
    [[nodiscard]] virtual bool cancelled() { return false; }
};

} // namespace zvhost
