#pragma once

#include "cli/engine.h"
#include "host/progress.h"

namespace cli {

// Tells at the terminal what goes on; holds the signals once the card is changed.
class ProgressLines : public Progress {
  public:
    void notice(const Sentence& sentence) override;
    void changing() override;
};

} // namespace cli
