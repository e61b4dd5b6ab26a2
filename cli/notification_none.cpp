#include "cli/notification.h"

namespace cli {

struct Desktop::Bus {};

Desktop::Desktop() : problem_("this build has no way to the desktop's notifications") {}

Desktop::~Desktop() = default;

std::string Desktop::show(const Notification& /*notification*/) {
    return problem_;
}

void Desktop::await_answers(std::chrono::milliseconds /*longest*/, const ActedOn& /*acted_on*/) {}

} // namespace cli
