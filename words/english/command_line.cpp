#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row COMMAND_LINE_ROWS[] = {
    {"card-in-reader", N_("card {serial} (\"{label}\"), module {module}{tries}")},
    {"card-unread", N_("cannot be read. {reason}")},
    {"help", N_("Run with --help for more information.")},
    {"log-has-details", N_("The log has the details: {log}")},
    {"mistyped", N_("{text}")},
    {"now-on-card", N_("Now on the card: {now}")},
    {"output-closed", N_("Standard output is closed.")},
};

} // namespace

Rows command_line_rows() {
    return COMMAND_LINE_ROWS;
}

} // namespace words
