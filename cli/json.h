#pragma once

#include "cli/engine.h"

#include <nlohmann/json_fwd.hpp>

namespace cli {

// What --json prints. It is made from what a command found, and nothing is ever read back from it.
using Json = nlohmann::ordered_json;

} // namespace cli
