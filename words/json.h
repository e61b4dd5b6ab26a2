#pragma once

#include <nlohmann/json_fwd.hpp>

namespace words {

// What is told to programs. It is made from what the engine found, and nothing is ever read back from it.
using Json = nlohmann::ordered_json;

} // namespace words
