// The machine around a renewal: files and folders that fail it, signals, another process.
#include "api/request_files.h"
#include "simcard/tool/object_view.h"
#include "tests/flows/flow.h"
#include "tests/support/process.h"

#include <csignal>
#include <sys/stat.h>
#include <sys/time.h>

#ifdef __linux__
#include <sched.h>
#include <sys/mount.h>
#endif

namespace {

using namespace zvtest;
namespace fs = std::filesystem;

class Surroundings : public PendingFlow {
  protected:
    // 0, 1 for a failure that the host is told of, 2 for any other.
    int told(int result) { return result == 0 ? 0 : szBuffErr[0] != '\0' ? 1 : 2; }
    void expectNothingLost() {
        EXPECT_EQ(objects(), before);
        EXPECT_EQ(request(), 0) << szBuffErr;
        EXPECT_EQ(save(issue(), false), 0) << szBuffErr;
        EXPECT_TRUE(pairWorks("DS3"));
    }
};

TEST_F(Surroundings, PlantedFilesAndALinkedLogFolder) {
    const fs::path kept = log.folder() / "kept";
    std::ofstream(kept) << "kept";
    fs::create_directory_symlink(log.folder(), log.folder() / "link");
    log.use(log.folder() / "link" / "other.log");
    for (const char* name : {zv::REQUEST_FILE, zv::SIGNED_FILE, zv::BASE64_FILE}) {
        fs::create_symlink(kept, name);
        EXPECT_EQ(request(), 0) << "a link at " << name;
        ASSERT_EQ(::mkfifo(name, 0600), 0);
        EXPECT_EQ(request(), 0) << "a pipe at " << name;
        std::ofstream(name) << "other";
        ASSERT_TRUE(::geteuid() != 0 || ::chown(name, 65534, 65534) == 0);
        EXPECT_EQ(request(), 0) << "another user's file at " << name;
        fs::create_directory(name);
        EXPECT_EQ(told(request()), 1) << "a folder at " << name;
        fs::remove(name);
    }
    EXPECT_EQ(fs::file_size(kept), 4u);
    EXPECT_TRUE(has(log.raw(), "corretamente Eseguita"));
    expectNothingLost();
}

#ifdef __linux__

constexpr int PAGES = 8, READ_ONLY = PAGES, GONE = PAGES + 1, NOT_ALLOWED = 77;

// Another /tmp for this process alone; a folder that is removed where it came from is gone.
bool changeTmp(int kind, const fs::path& folder) {
    fs::create_directory(folder);
    bool done =
        ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    if (kind == GONE)
        done = done && ::mount(folder.c_str(), "/tmp", nullptr, MS_BIND, nullptr) == 0;
    else
        done = done && ::mount("none", "/tmp", "tmpfs", kind == READ_ONLY ? MS_RDONLY : 0, "size=32k") == 0;
    if (done && kind < PAGES) std::ofstream("/tmp/rest") << std::string(4096U * (PAGES - kind), 'x');
    return fs::remove(folder) && done;
}

TEST_F(Surroundings, TmpThatIsFullOrReadOnlyOrGone) {
    for (const int kind : {0, 1, 3, PAGES - 1, READ_ONLY, GONE}) {
        const Ending ending = in_child([&] {
            if (!changeTmp(kind, cards.path().parent_path() / "zv-gone")) return int{NOT_ALLOWED};
            const int code = told(request());
            if (read().result != 0 || (kind < PAGES && (!fs::remove("/tmp/rest") || request() != 0)))
                return 3;
            return code;
        });
        if (ending.code == NOT_ALLOWED) GTEST_SKIP() << "this user may not mount anything";
        EXPECT_EQ(ending.code, kind == PAGES - 1 ? 0 : 1) << kind << " pages free";
    }
    expectNothingLost();
}

#endif

TEST_F(Surroundings, SignalsDuringTheKeyGeneration) {
    static volatile std::sig_atomic_t seen = 0;
    const auto handler = [](int signal) {
        seen = seen + 1;
        if (signal == SIGALRM) ::raise(SIGCHLD), ::raise(SIGPIPE);
    };
    struct sigaction action {};
    action.sa_handler = handler;
    for (const int signal : {SIGALRM, SIGCHLD, SIGPIPE})
        ::sigaction(signal, &action, nullptr);
    const itimerval often = {{0, 500}, {0, 500}}, never = {};
    module.use_keys("");
    ::setitimer(ITIMER_REAL, &often, nullptr);
    EXPECT_EQ(request("DS4"), 0) << szBuffErr;
    ::setitimer(ITIMER_REAL, &never, nullptr);
    for (const int signal : {SIGALRM, SIGCHLD, SIGPIPE})
        ::signal(signal, SIG_DFL);
    EXPECT_GT(seen, 30);
    EXPECT_EQ(save(issue(), true, "DS0", "DS4"), 0);
    EXPECT_TRUE(pairWorks("DS4"));
}

TEST_F(Surroundings, TwoProcessesAtOnce) {
    static constexpr const char* READERS[] = {READER, "Simulated Reader 1"};
    const simcard::Card other = cards.make({.name = "other", .reader = READERS[1]});
    cards.configure();
    const auto renew = [&](const char* reader, const std::string& pending) {
        log.use(log.folder() / (pending + ".log"));
        if (read(PIN, reader).result != 0) return told(2);
        const int code = told(request(pending));
        std::ofstream(log.folder() / pending) << (code == 0 ? requestText : "");
        return code;
    };
    for (const char* reader : READERS) {
        const pid_t child = ::fork();
        if (child == 0) ::_exit(renew(reader, "DS5"));
        const Ending here = in_child([&] { return renew(READER, "DS4"); });
        int there = 0;
        ::waitpid(child, &there, 0);
        EXPECT_LE(here.code, 1);
        EXPECT_TRUE(WIFEXITED(there) && WEXITSTATUS(there) <= 1) << there;
        for (const std::string pending : {"DS4", "DS5"}) {
            requestText = simcard::read_file(log.folder() / pending);
            EXPECT_TRUE(requestText.empty() || !issue().empty()) << pending;
            EXPECT_EQ(in_child([&] { return renew(pending == "DS4" ? READER : reader, pending); }).code, 0);
        }
        const auto all = objects();
        for (const std::string& object : before)
            EXPECT_EQ(std::count(all.begin(), all.end(), object),
                      std::count(before.begin(), before.end(), object));
        EXPECT_EQ(std::count(all.begin(), all.end(), "private key DS4"), 1);
        EXPECT_EQ(std::count(all.begin(), all.end(), "private key DS5"), 1);
    }
    EXPECT_EQ(simcard::view_objects(other, PIN).size(), before.size());
}

} // namespace
