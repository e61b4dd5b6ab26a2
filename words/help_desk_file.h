#pragma once

#include "host/help_desk.h"

#include <string>

namespace words {

// What is sent to a help desk: plain text, so that it can be read before.
//
// @param program  which one writes it, and its version: "zvrenew 1.0.4"
// @param with_names  names and tax codes stay in it
[[nodiscard]] std::string help_desk_text(const zvhost::Examination& examination, bool with_names,
                                         const std::string& program);

} // namespace words
