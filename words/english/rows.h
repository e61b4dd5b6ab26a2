#pragma once

#include "words/language.h"

#include <span>

namespace words {

// A sentence in English, with a place for each of its values: "The pair {pair} waits.".
struct Row {
    const char* id;
    const char* english;
};

using Rows = std::span<const Row>;

// Each area's, in its own file.
Rows advice_rows();
Rows card_rows();
Rows command_line_rows();
Rows desktop_rows();
Rows doctor_rows();
Rows files_rows();
Rows install_rows();
Rows library_rows();
Rows list_rows();
Rows module_rows();
Rows pin_rows();
Rows plainly_rows();
Rows plan_rows();
Rows rehearse_rows();
Rows remind_rows();
Rows remove_rows();
Rows renew_rows();
Rows request_rows();
Rows subject_rows();
Rows waiting_rows();
Rows window_rows();

} // namespace words
