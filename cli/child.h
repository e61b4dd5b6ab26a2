#pragma once

#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace cli {

// Holds back the signals that ask a program to end, so that what is under way can be cleared away first; at the end of
// its life they have their effect.
class HeldSignals {
  public:
    HeldSignals();
    ~HeldSignals();
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

    // As they were.
    [[nodiscard]] const sigset_t& before() const { return before_; }

  private:
    sigset_t before_{};
};

// A program to run out of sight.
struct ChildPlan {
    std::vector<std::string> words;       // its path, then what it is told
    std::vector<std::string> environment; // "NAME=value"
    std::filesystem::path folder;         // where it works
    std::filesystem::path output;         // file for all that it prints
};

// Runs a program in a process group of its own and waits for it. When a signal asks this program to end, the other one
// is ended first.
//
// @return its exit code, or 128 and the number of the signal that ended it
// @throws std::runtime_error when it cannot be run, or was ended for a signal
[[nodiscard]] int run_child(const ChildPlan& plan, const HeldSignals& signals);

} // namespace cli
