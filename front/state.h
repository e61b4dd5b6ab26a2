#pragma once

#include "front/known_objects.h"
#include "front/opening.h"
#include "front/slot_numbers.h"

#include <sys/types.h>

#include <chrono>
#include <mutex>
#include <optional>

namespace zvfront {

// Who started a module.
enum class Started { no, here, elsewhere };

// What one process knows of a module.
struct State {
    explicit State(pid_t owner, const State* of_parent = nullptr) : process(owner), parents(of_parent) {}

    const pid_t process;
    const State* const parents; // how it was in the process that this one is a child of, when that was made
    // A card does one thing at a time. A module may call its caller back, who may call it again.
    std::recursive_mutex gate;
    int depth = 0; // calls under way
    Started started = Started::no;
    std::optional<Opening> opening;
    std::chrono::steady_clock::time_point closed; // when the last one ended
    SlotNumbers slots;
    KnownObjects objects;
};

// The way into a module, for one call.
class Entered {
  public:
    explicit Entered(State& state) : state_(state), held_(state.gate) { ++state_.depth; }
    ~Entered() { --state_.depth; }
    Entered(const Entered&) = delete;
    Entered& operator=(const Entered&) = delete;

  private:
    State& state_;
    const std::lock_guard<std::recursive_mutex> held_;
};

} // namespace zvfront
