#pragma once

#include "cli/engine.h"
#include "words/json.h"

namespace cli {

// What --json prints.
using words::Json;

} // namespace cli
