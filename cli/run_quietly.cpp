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
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& word : command)
        arguments.push_back(
            const_cast<char*>(word.c_str())); // NOLINT(cppcoreguidelines-pro-type-const-cast): the
                                              // system's signature; it writes to none of them
    arguments.push_back(nullptr);
    const NoStreams streams;
    pid_t process = 0;
    return ::posix_spawnp(&process, arguments[0], streams.get(), nullptr, arguments.data(), environ) == 0 &&
           ended_well(process);
}

} // namespace cli
