#pragma once

#include "cli/options.h"

#include <string>

namespace cli {

// Takes the PIN from where the options say: a file, or the terminal, without echo.
//
// A file holds the PIN and nothing else; one line end behind it does not count.
class PinInput : public PinSource {
  public:
    explicit PinInput(const CardOptions& options) : options_(options) {}

    // @throws Error when there is no PIN to be had
    [[nodiscard]] std::optional<Pin> at_once() override;
    [[nodiscard]] Pin ask(const CardFacts& card) override;
    [[nodiscard]] bool final_try() const override { return options_.final_try; }

  private:
    const CardOptions& options_;
};

} // namespace cli
