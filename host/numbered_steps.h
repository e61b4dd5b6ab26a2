#pragma once

#include "host/progress.h"

namespace zvhost {

// Tells the steps of one plan, or of several that follow one another, as those of one whole.
class NumberedSteps : public Progress {
  public:
    // @param of    so many steps there are, as far as that is known
    // @param done  so many of them are done
    explicit NumberedSteps(Progress& shown, int of, int done = 0) : shown_(shown), number_(done), of_(of) {}

    void notice(const Sentence& sentence) override { shown_.notice(sentence); }
    void changing() override { shown_.changing(); }
    void step(const Step& step) override;
    void rests() override { shown_.rests(); }
    [[nodiscard]] bool cancelled() override { return shown_.cancelled(); }

  private:
    Progress& shown_;
    int number_;
    int of_;
};

} // namespace zvhost
