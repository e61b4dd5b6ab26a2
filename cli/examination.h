#pragma once

#include "cli/engine.h"
#include "cli/json.h"
#include "host/doctor.h"

#include <string>

namespace cli {

// The doctor's findings, a line each, what can be done below.
[[nodiscard]] std::string in_lines(const Examination& examination);
[[nodiscard]] Json as_json(const Examination& examination);

} // namespace cli
