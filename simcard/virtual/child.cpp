#include "simcard/virtual/child.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

namespace simcard {
namespace {

constexpr int NOT_STARTED = 127;
constexpr int BY_SIGNAL = 128;

[[noreturn]] void become(const std::vector<char*>& arguments, const std::string& log) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (!log.empty()) {
        const int file = ::open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        ::dup2(file, STDOUT_FILENO);
        ::dup2(file, STDERR_FILENO);
    }
    ::execvp(arguments[0], arguments.data());
    std::perror(arguments[0]);
    ::_exit(NOT_STARTED);
}

} // namespace

Child::Child(std::vector<std::string> command, const std::string& log) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& word : command)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    process_ = ::fork();
    if (process_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (process_ == 0) become(arguments, log);
}

Child::~Child() {
    if (process_ > 0) (void)end(SIGKILL);
}

Child::Child(Child&& other) noexcept : process_(std::exchange(other.process_, -1)) {}

int Child::end(int signal) {
    ::kill(process_, signal);
    return wait();
}

int Child::wait() {
    int status = 0;
    while (::waitpid(process_, &status, 0) < 0 && errno == EINTR)
        continue;
    process_ = -1;
    return WIFSIGNALED(status) ? BY_SIGNAL + WTERMSIG(status) : WEXITSTATUS(status);
}

bool Child::runs() const {
    siginfo_t ended{};
    const int looked = ::waitid(P_PID, static_cast<id_t>(process_), &ended, WEXITED | WNOHANG | WNOWAIT);
    return looked == 0 && ended.si_pid == 0;
}

} // namespace simcard
