#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row COMMAND_LINE_ROWS[] = {
    {"argument-missing", N_("{name} is missing.")},
    {"card-in-reader", N_("card {serial} (\"{label}\"), module {module}{tries}")},
    {"card-unread", N_("cannot be read. {reason}")},
    {"certificate-of-kind", N_("the {kind} certificate")},
    {"command-missing", N_("The command is missing, such as: zvrenew status")},
    {"command-unknown", N_("There is no command \"{word}\".")},
    {"given-again", N_("{name} is given more than once.")},
    {"help", N_("Run with --help for more information.")},
    {"kind-unknown", N_("signature, authentication or services, not \"{word}\"")},
    {"log-has-details", N_("The log has the details: {log}")},
    {"log-is", N_("Log: {log}")},
    {"mistyped", N_("Mistyped: {text}")},
    {"now-on-card", N_("Now on the card: {now}")},
    {"number-wanted", N_("a number from 0 to {most}, not \"{word}\"")},
    {"output-closed", N_("Standard output is closed.")},
    {"output-elsewhere", N_("Have it written elsewhere.")},
    {"output-full", N_("Standard output does not take the answer ({reason}).")},
    {"quoted-file", N_("The quoted text names molvastra.ini, a file that this program does not have: see "
                       "instead what the reader and the card say with: zvrenew readers")},
    {"quoted-program",
     N_("By molvastra.exe the quoted text means this program: there is nothing else to restart.")},
    {"takes-no-value", N_("{name} takes no value.")},
    {"unexpected", N_("Unexpected failure: {text}")},
    {"value-missing", N_("{name} wants a value.")},
    {"value-refused", N_("{name}: {reason}")},
    {"value-unfit", N_("{name} does not take \"{value}\".")},
    {"word-unknown", N_("one of these, not \"{word}\": {known}")},
    {"words-unexpected", N_("Not expected here: {words}")},
};

} // namespace

Rows command_line_rows() {
    return COMMAND_LINE_ROWS;
}

} // namespace words
