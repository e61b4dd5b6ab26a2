#pragma once

#include "cli/report.h"

namespace cli {

// A report as a person reads it: what came of the command, what can be done next, where the log is.
[[nodiscard]] std::string in_words(const Report& report);

// The same as data, without the command and its result.
[[nodiscard]] Json report_json(const Report& report);

// What a person can do; the library's texts are quoted as they are, and what they say may need a word.
[[nodiscard]] std::vector<Advice> advice_of(const Error& stop);

// {"message", "advice", ...} and, where it could have been changed, "on_card".
[[nodiscard]] Json stop_json(const Error& stop);

} // namespace cli
