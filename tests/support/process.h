#pragma once

#include <sys/wait.h>
#include <unistd.h>

namespace zvtest {

// How a child process ended: its exit code, or the signal that ended it.
struct Ending {
    int code = -1;
    int signal = 0;
};

// Runs something in a child process, whose exit code is what it gives. Modules must not be initialised here.
template <class F> Ending in_child(F run) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(static_cast<int>(run()));
    int status = 0;
    Ending ending;
    if (child < 0 || ::waitpid(child, &status, 0) != child) return ending;
    if (WIFEXITED(status)) ending.code = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) ending.signal = WTERMSIG(status);
    return ending;
}

} // namespace zvtest
