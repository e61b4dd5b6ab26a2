#pragma once

#include "cli/options.h"

#include <string>

namespace cli {

// Takes the PIN from where the options say: a file, a descriptor, a program that asks for it, or the terminal, without
// echo.
//
// A file holds the PIN and nothing else; one line end behind it does not count.
class PinInput : public PinSource {
  public:
    // @throws Error when the options name more than one place, or the descriptor's PIN cannot be had
    explicit PinInput(const CardOptions& options);

    // @throws Error when there is no PIN to be had
    [[nodiscard]] std::optional<Pin> at_once() override;
    [[nodiscard]] Pin ask(const CardFacts& card) override;
    void refused() override { refused_ = true; }
    [[nodiscard]] bool final_try() const override { return options_.final_try; }

  private:
    const CardOptions& options_;
    std::optional<Pin> given_; // the descriptor's
    bool refused_ = false;
};

} // namespace cli
