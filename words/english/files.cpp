#include "words/english/rows.h"

namespace words {
namespace {

constexpr Row FILES_ROWS[] = {
    {"busy-card", N_("Another program{who} is at work on this card.")},
    {"busy-process", N_(" (process {process})")},
    {"busy-requesting",
     N_("Another program{who} is making a request, and two would get into each other's temporary files.")},
    {"file-in-the-way", N_("{file} is in the way: a file of {owner}.")},
    {"file-other-name", N_("Give another name, or move that file away.")},
    {"file-there", N_("There is a file {file} already.")},
    {"file-too-large", N_("The file {file} is larger than 1 MiB.")},
    {"file-unmade", N_("The file {file} cannot be made ({reason}).")},
    {"file-unread", N_("The file {file} cannot be read ({reason}).")},
    {"file-unwritten", N_("The file {file} cannot be written ({reason}).")},
    {"file-without-certificate", N_("There is no certificate in {file}.")},
    {"folder-in-the-way", N_("{file} is in the way: a folder of {owner}.")},
    {"free-name", N_("See to it that files can be made in /tmp, and that nothing else is called {file}.")},
    {"have-removed", N_("Have {owner} remove {file}, or an administrator.")},
    {"lock-unusable", N_("The file {file}, which keeps programs apart, cannot be used ({reason}).")},
    {"make-room-in", N_("Make room in {folder}.")},
    {"no-log", N_("There will be no log: {folder} cannot be made ({reason}).")},
    {"request-too-large", N_("The request {file} is larger than 1 MiB.")},
    {"request-unread", N_("The request {file} cannot be read ({reason}).")},
    {"run-when-ended", N_("Run the command again when that one has ended.")},
    {"user-without-name", N_("user {number}")},
};

} // namespace

Rows files_rows() {
    return FILES_ROWS;
}

} // namespace words
