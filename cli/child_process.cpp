#include "cli/child_process.h"

#include "host/error.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <thread>

extern char** environ; // NOLINT(readability-redundant-declaration): macOS declares it nowhere

namespace cli {
namespace {

[[noreturn]] void stop_at_start(const std::string& program, int error) {
    throw Error(Exit::refused,
                Sentence("pin-program-unstarted",
                         {{"program", program}, {"reason", std::string(std::strerror(error))}}));
}

// How the program is started: with the pipes, and with the signals as a program expects them.
class ProgramStart {
  public:
    ProgramStart(int input, int output) {
        posix_spawn_file_actions_init(&files_);
        posix_spawn_file_actions_adddup2(&files_, input, STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&files_, output, STDOUT_FILENO);
        posix_spawnattr_init(&attributes_);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes_, &signals);
        for (const int signal : {SIGPIPE, SIGXFSZ})
            sigaddset(&signals, signal);
        posix_spawnattr_setsigdefault(&attributes_, &signals);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~ProgramStart() {
        posix_spawn_file_actions_destroy(&files_);
        posix_spawnattr_destroy(&attributes_);
    }
    ProgramStart(const ProgramStart&) = delete;
    ProgramStart& operator=(const ProgramStart&) = delete;

    [[nodiscard]] int run(const std::string& program, pid_t& process) const {
        std::string name = program;
        std::array<char*, 2> arguments{name.data(), nullptr};
        return posix_spawnp(&process, program.c_str(), &files_, &attributes_, arguments.data(), environ);
    }

  private:
    posix_spawn_file_actions_t files_{};
    posix_spawnattr_t attributes_{};
};

// One that has a terminal to put back gets a moment for it.
bool ends_soon(pid_t process) {
    constexpr int looks = 100;
    for (int look = 0; look < looks; ++look) {
        const pid_t ended = ::waitpid(process, nullptr, WNOHANG);
        if (ended == process || (ended < 0 && errno != EINTR)) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

} // namespace

ChildProcess::ChildProcess(const std::string& program) {
    const ProgramStart start(to_program_.from->get(), from_program_.to->get());
    if (const int error = start.run(program, process_); error != 0) stop_at_start(program, error);
    to_program_.from.reset();
    from_program_.to.reset();
}

ChildProcess::~ChildProcess() {
    to_program_.to.reset();
    from_program_.from.reset();
    if (ends_soon(process_)) return;
    for (const int signal : {SIGTERM, SIGKILL}) {
        ::kill(process_, signal);
        if (ends_soon(process_)) return;
    }
}

bool ChildProcess::tell(const std::string& text) const {
    std::size_t told = 0;
    while (told < text.size()) {
        const ssize_t count = ::write(to_program_.to->get(), text.data() + told, text.size() - told);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        told += static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace cli
