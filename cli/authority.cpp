#include "cli/authority.h"

#include "host/new_file.h"
#include "host/scoped_fd.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>

extern char** environ;

namespace cli {
namespace {

constexpr int NOT_YET = 75; // EX_TEMPFAIL of sysexits.h
constexpr std::size_t LONGEST_ANSWER = std::size_t{1024} * 1024;

bool is_there(const std::string& file) {
    std::error_code none;
    return !file.empty() && std::filesystem::is_regular_file(file, none);
}

[[noreturn]] void stop_unasked(const std::string& command, int error) {
    throw Error(Exit::failed,
                {"authority-unasked", {{"command", command}, {"reason", std::string(std::strerror(error))}}});
}

// The command's own settings: descriptors, and signals as a program expects to find them.
class Spawning {
  public:
    Spawning(int input, int output) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawnattr_init(&attributes_);
        posix_spawn_file_actions_adddup2(&actions_, input, STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
        sigset_t none, usual;
        sigemptyset(&none);
        sigemptyset(&usual);
        sigaddset(&usual, SIGPIPE);
        sigaddset(&usual, SIGXFSZ);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &usual);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~Spawning() {
        posix_spawnattr_destroy(&attributes_);
        posix_spawn_file_actions_destroy(&actions_);
    }
    Spawning(const Spawning&) = delete;
    Spawning& operator=(const Spawning&) = delete;

    [[nodiscard]] pid_t start(const std::string& command) {
        std::string shell = "sh", option = "-c", text = command;
        std::array<char*, 4> words{shell.data(), option.data(), text.data(), nullptr};
        pid_t child = 0;
        const int error = posix_spawn(&child, "/bin/sh", &actions_, &attributes_, words.data(), environ);
        if (error != 0) stop_unasked(command, error);
        return child;
    }

  private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

std::string read_all(int fd) {
    std::string text;
    std::array<char, 4096> piece{};
    while (true) {
        const ssize_t got = ::read(fd, piece.data(), piece.size());
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return text;
        if (text.size() <= LONGEST_ANSWER) text.append(piece.data(), static_cast<std::size_t>(got));
    }
}

int result_of(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR)
        continue;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

struct Answer {
    int code = 0;
    std::string text;
};

Answer run(const std::string& command, const std::string& request) {
    const ScopedFd input(::open(request.c_str(), O_RDONLY | O_CLOEXEC));
    if (!input) stop_unasked(command, errno);
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) stop_unasked(command, errno);
    const ScopedFd from(ends[0]);
    ScopedFd to(ends[1]);
    (void)::fcntl(from.get(), F_SETFD, FD_CLOEXEC);
    (void)::fcntl(to.get(), F_SETFD, FD_CLOEXEC);
    const pid_t child = Spawning(input.get(), to.get()).start(command);
    { const ScopedFd closed(std::move(to)); }
    Answer answer;
    answer.text = read_all(from.get());
    answer.code = result_of(child);
    return answer;
}

} // namespace

std::string AuthorityByFile::at_hand() {
    return is_there(certificate_) ? certificate_ : "";
}

std::string AuthorityByFile::ask(const std::string& /*request*/) {
    return at_hand();
}

std::string AuthorityByCommand::at_hand() {
    return is_there(certificate_) ? certificate_ : "";
}

std::string AuthorityByCommand::ask(const std::string& request) {
    const NewFile kept(certificate_);
    const Answer answer = run(command_, request);
    if (answer.code == NOT_YET) return {};
    if (answer.code != 0 || answer.text.empty() || answer.text.size() > LONGEST_ANSWER)
        throw Error(Exit::failed, {"authority-failed", {{"command", command_}, {"code", long{answer.code}}}},
                    Advice{"repeat", {"authority-failed-advice", {}}});
    kept.save(answer.text);
    return certificate_;
}

} // namespace cli
