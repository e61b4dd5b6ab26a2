#pragma once

#include "cli/engine.h"
#include "cli/heartbeat.h"
#include "host/progress.h"

#include <optional>

namespace cli {

// Tells at the terminal what goes on. Once the card is changed, what would end the program waits for the step's end.
class ProgressLines : public Progress {
  public:
    void notice(const Sentence& sentence) override;
    void changing() override;
    void step(const Step& step) override;
    void rests() override { heartbeat_.reset(); }
    [[nodiscard]] bool cancelled() override;
    // All is done, also where the end was asked for meanwhile: then it says so.
    void done();

  private:
    std::optional<Heartbeat> heartbeat_;
};

} // namespace cli
