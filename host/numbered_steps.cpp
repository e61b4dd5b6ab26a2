#include "host/numbered_steps.h"

#include <algorithm>

namespace zvhost {

void NumberedSteps::step(const Step& step) {
    Step numbered = step;
    numbered.number = ++number_;
    of_ = std::max(of_, number_);
    numbered.of = of_;
    shown_.step(numbered);
}

} // namespace zvhost
