#include "cli/run_quietly.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

extern char** environ;

namespace cli {
namespace {

class NoStreams {
  public:
    NoStreams() {
        ::posix_spawn_file_actions_init(&actions_);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            ::posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", O_RDWR, 0);
    }
    ~NoStreams() { ::posix_spawn_file_actions_destroy(&actions_); }
    NoStreams(const NoStreams&) = delete;
    NoStreams& operator=(const NoStreams&) = delete;

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

  private:
    posix_spawn_file_actions_t actions_{};
};

// How it is started: as this program was, or in a session of its own.
class QuietStart {
  public:
    QuietStart() { ::posix_spawnattr_init(&attributes_); }
    ~QuietStart() { ::posix_spawnattr_destroy(&attributes_); }
    QuietStart(const QuietStart&) = delete;
    QuietStart& operator=(const QuietStart&) = delete;

    void apart() { ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSID); }
    [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

  private:
    posix_spawnattr_t attributes_{};
};

// @return its process; 0 when it could not be started
pid_t start_quietly(const std::vector<std::string>& command, const QuietStart& start) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& word : command)
        arguments.push_back(
            const_cast<char*>(word.c_str())); // NOLINT(cppcoreguidelines-pro-type-const-cast): the
                                              // system's signature; it writes to none of them
    arguments.push_back(nullptr);
    const NoStreams streams;
    pid_t process = 0;
    const int problem =
        ::posix_spawnp(&process, arguments[0], streams.get(), start.get(), arguments.data(), environ);
    return problem == 0 ? process : 0;
}

bool ended_well(pid_t process) {
    int status = 0;
    pid_t ended = 0;
    do
        ended = ::waitpid(process, &status, 0);
    while (ended < 0 && errno == EINTR);
    return ended == process && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

bool run_quietly(const std::vector<std::string>& command) {
    const pid_t process = start_quietly(command, QuietStart());
    return process != 0 && ended_well(process);
}

bool start_apart(const std::vector<std::string>& command) {
    QuietStart start;
    start.apart();
    return start_quietly(command, start) != 0;
}

} // namespace cli
