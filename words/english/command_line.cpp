#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row COMMAND_LINE_ROWS[] = {
    {"help", N_("Run with --help for more information.")},
    {"mistyped", N_("{text}")},
};

} // namespace

Rows command_line_rows() {
    return COMMAND_LINE_ROWS;
}

} // namespace words
