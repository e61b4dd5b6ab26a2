#pragma once

#include "host/help_desk.h"

#include <string>

namespace cli {

// What is sent to a help desk: plain text, so that it can be read before.
//
// @param with_names  names and tax codes stay in it
[[nodiscard]] std::string help_desk_text(const zvhost::Examination& examination, bool with_names);

} // namespace cli
