#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row COMMAND_LINE_ROWS[] = {
    {"card-in-reader", N_("card {serial} (\"{label}\"), module {module}{tries}")},
    {"card-unread", N_("cannot be read. {reason}")},
    {"help", N_("Run with --help for more information.")},
    {"log-has-details", N_("The log has the details: {log}")},
    {"log-is", N_("Log: {log}")},
    {"mistyped", N_("{text}")},
    {"now-on-card", N_("Now on the card: {now}")},
    {"output-closed", N_("Standard output is closed.")},
    {"output-elsewhere", N_("Have it written elsewhere.")},
    {"output-full", N_("Standard output does not take the answer ({reason}).")},
    {"quoted-file", N_("The quoted text names molvastra.ini, a file that this program does not have: see "
                       "instead what the reader and the card say with: zvrenew readers")},
    {"quoted-program",
     N_("By molvastra.exe the quoted text means this program: there is nothing else to restart.")},
    {"unexpected", N_("Unexpected failure: {text}")},
};

} // namespace

Rows command_line_rows() {
    return COMMAND_LINE_ROWS;
}

} // namespace words
