#include "host/journal_problem.h"

#include "host/journal.h"

#include <atomic>
#include <cerrno>
#include <cstring>

namespace zvhost {
namespace {

std::atomic<int> untold_error{0};
std::atomic<bool> was_noted{false};

} // namespace

void note_journal(int error) {
    if (error != 0 && !was_noted.exchange(true)) untold_error = error;
}

Sentence journal_problem() {
    const int error = untold_error.exchange(0);
    if (error == 0) return {};
    if (error == EPROTONOSUPPORT) return Sentence("journal-newer", {{"folder", Journal().folder()}});
    return Sentence("journal-unwritten", {{"folder", Journal().folder()}, {"reason", std::strerror(error)}});
}

} // namespace zvhost
