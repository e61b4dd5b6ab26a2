// The machine around a renewal: a /tmp that fails it, signals, another process.
#include "simcard/authority/files.h"
#include "simcard/tool/object_view.h"
#include "tests/flows/flow.h"
#include "tests/support/process.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/time.h>

#include <csignal>

namespace {

using namespace zvtest;

class Surroundings : public PendingFlow {
  protected:
    // 0, 1 for a failure that the host is told of, 2 for any other.
    int told(int result) { return result == 0 ? 0 : szBuffErr[0] != '\0' ? 1 : 2; }
    // A reading that fails tells by its code alone: another process may take away what it has just found.
    int read_and_request(const std::string& pending, const char* reader = READER) {
        const int code = read(PIN, reader).result != 0 ? 1 : told(request(pending));
        std::ofstream(log.folder() / pending) << (code == 0 ? request_text : "");
        return code;
    }
};

TEST_F(Surroundings, TmpThatIsFullOrReadOnlyOrGone) {
    const auto gone = cards.path().parent_path() / "zv-gone";
    // What is mounted, with which flags; how much of it is used; the outcome.
    for (const auto& [type, flags, used, code] : {std::tuple{"tmpfs", 0UL, 32768U, 1},
                                                  {"tmpfs", 0UL, 4096U, 0},
                                                  {"tmpfs", MS_RDONLY + 0UL, 0U, 1},
                                                  {"none", MS_BIND + 0UL, 0U, 1}}) {
        std::filesystem::create_directory(gone);
        const Ending ending = in_child([&, type = type, flags = flags, used = used, code = code] {
            ::unshare(CLONE_NEWNS);
            // Not every user may.
            if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return code;
            ::mount(gone.c_str(), "/tmp", type, flags, flags == MS_BIND ? nullptr : "size=32k");
            std::filesystem::remove(gone);
            if (used != 0) std::ofstream("/tmp/rest") << std::string(used, 'x');
            const int got = told(request());
            return read().result == 0 ? got : 3;
        });
        EXPECT_EQ(ending.code, code) << type << ' ' << flags << ' ' << used;
    }
    EXPECT_EQ(save(certificate, false), 0) << szBuffErr;
    EXPECT_TRUE(pair_works("DS3"));
}

TEST_F(Surroundings, SignalsDuringTheKeyGeneration) {
    static volatile std::sig_atomic_t seen = 0;
    struct sigaction action {};
    action.sa_handler = [](int signal) {
        seen = seen + 1;
        if (signal == SIGALRM) ::raise(SIGPIPE);
    };
    ::sigaction(SIGALRM, &action, nullptr);
    ::sigaction(SIGPIPE, &action, nullptr);
    const itimerval often = {{0, 500}, {0, 500}}, never = {};
    module.use_keys("");
    ::setitimer(ITIMER_REAL, &often, nullptr);
    EXPECT_EQ(request("DS4"), 0) << szBuffErr;
    ::setitimer(ITIMER_REAL, &never, nullptr);
    ::signal(SIGALRM, SIG_DFL);
    ::signal(SIGPIPE, SIG_DFL);
    EXPECT_GT(seen, 30);
    EXPECT_EQ(save(issue(), true, "DS0", "DS4"), 0);
    EXPECT_TRUE(pair_works("DS4"));
}

TEST_F(Surroundings, TwoProcessesAtOnceOnOneCardAndOnTwo) {
    static constexpr const char* readers[] = {READER, "Simulated Reader 1"};
    const simcard::Card other = cards.make({.name = "other", .reader = readers[1]});
    cards.configure();
    const std::size_t kept = before.size();
    for (const std::string pending : {"DS4", "DS5"})
        before.insert(before.end(), {"private key " + pending, "public key " + pending});
    for (const char* reader : readers) {
        const pid_t child = ::fork();
        if (child == 0) ::_exit(read_and_request("DS5", reader));
        EXPECT_LE(in_child([&] { return read_and_request("DS4"); }).code, 1);
        int there = 0;
        ::waitpid(child, &there, 0);
        EXPECT_TRUE(WIFEXITED(there) && WEXITSTATUS(there) <= 1) << there;
        for (const std::string pending : {"DS4", "DS5"}) {
            request_text = simcard::read_file(log.folder() / pending);
            EXPECT_TRUE(request_text.empty() || !issue().empty()) << pending;
            const char* holder = pending == "DS4" ? READER : reader;
            EXPECT_EQ(in_child([&] { return read_and_request(pending, holder); }).code, 0);
        }
        const auto all = objects();
        EXPECT_TRUE(std::is_permutation(all.begin(), all.end(), before.begin(), before.end()));
    }
    EXPECT_EQ(simcard::view_objects(other, PIN).size(), kept);
}

} // namespace
