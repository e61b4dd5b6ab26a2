#pragma once

#include "host/doctor.h"

#include <string>

namespace words {

// The doctor's findings, a line each, what can be done below.
[[nodiscard]] std::string in_lines(const zvhost::Examination& examination);

} // namespace words
