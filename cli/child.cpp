#include "cli/child.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstring>
#include <initializer_list>
#include <stdexcept>

namespace cli {
namespace {

void do_nothing(int /*signal*/) {}

// Those that ask to end, and the one that tells that a child has.
sigset_t waited_for() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGCHLD})
        sigaddset(&set, signal);
    return set;
}

std::vector<char*> pointers(const std::vector<std::string>& texts) {
    std::vector<char*> list;
    list.reserve(texts.size() + 1);
    for (const std::string& text : texts)
        list.push_back(const_cast<char*>(text.c_str()));
    list.push_back(nullptr);
    return list;
}

[[noreturn]] void fail(const std::string& program, int error) {
    throw std::runtime_error("Cannot run " + program + " (" + std::strerror(error) + ").");
}

// What a child is started with.
class Start {
  public:
    Start(const ChildPlan& plan, const sigset_t& mask) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addchdir_np(&actions_, plan.folder.c_str());
        posix_spawn_file_actions_addopen(&actions_, 0, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions_, 1, plan.output.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                         0600);
        posix_spawn_file_actions_adddup2(&actions_, 1, 2);
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK);
        posix_spawnattr_setpgroup(&attributes_, 0);
        posix_spawnattr_setsigmask(&attributes_, &mask);
    }
    ~Start() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }
    Start(const Start&) = delete;
    Start& operator=(const Start&) = delete;

    [[nodiscard]] pid_t spawn(const ChildPlan& plan) const {
        pid_t child = 0;
        const int error = posix_spawn(&child, plan.words.front().c_str(), &actions_, &attributes_,
                                      pointers(plan.words).data(), pointers(plan.environment).data());
        if (error != 0) fail(plan.words.front(), error);
        return child;
    }

  private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

// The next signal that asks to end, when one comes before the child has ended.
int wait_for(pid_t child, int& status) {
    const sigset_t signals = waited_for();
    while (::waitpid(child, &status, WNOHANG) == 0) {
        int signal = 0;
        if (sigwait(&signals, &signal) == 0 && signal != SIGCHLD) return signal;
    }
    return 0;
}

// The signal waits for whoever lets it have its effect.
[[noreturn]] void end_with(pid_t child, int signal) {
    ::kill(-child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    (void)::raise(signal);
    throw std::runtime_error("A signal ended the program.");
}

} // namespace

HeldSignals::HeldSignals() {
    // Where nobody waits for it, it may be lost.
    (void)std::signal(SIGCHLD, do_nothing);
    const sigset_t held = waited_for();
    pthread_sigmask(SIG_BLOCK, &held, &before_);
}

HeldSignals::~HeldSignals() {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

int run_child(const ChildPlan& plan, const HeldSignals& signals) {
    const pid_t child = Start(plan, signals.before()).spawn(plan);
    int status = 0;
    if (const int signal = wait_for(child, status); signal != 0) end_with(child, signal);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace cli
