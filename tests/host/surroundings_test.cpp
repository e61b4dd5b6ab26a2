// The machine around a renewal: a /tmp that fails it, another process.
#include "simcard/authority/files.h"
#include "tests/flows/flow.h"
#include "tests/support/process.h"

#include <sched.h>
#include <sys/mount.h>

namespace {

using namespace zvtest;

class Surroundings : public PendingFlow {
  protected:
    // 0, 1 for a failure that the host is told of, 2 for any other.
    int told(int result) { return result == 0 ? 0 : szBuffErr[0] != '\0' ? 1 : 2; }
    int readAndRequest(const std::string& pending) {
        if (read().result != 0) return told(2);
        const int code = told(request(pending));
        std::ofstream(log.folder() / pending) << (code == 0 ? requestText : "");
        return code;
    }
};

TEST_F(Surroundings, TmpThatIsFullOrReadOnly) {
    for (const auto& [flags, used, code] :
         {std::tuple{0UL, 32768U, 1}, {0UL, 4096U, 0}, {MS_RDONLY + 0UL, 0U, 1}}) {
        const Ending ending = in_child([&, flags = flags, used = used, code = code] {
            ::unshare(CLONE_NEWNS);
            // Not every user may.
            if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return code;
            ::mount("none", "/tmp", "tmpfs", flags, "size=32k");
            std::ofstream("/tmp/rest") << std::string(used, 'x');
            const int got = told(request());
            return read().result == 0 ? got : 3;
        });
        EXPECT_EQ(ending.code, code) << flags << ' ' << used;
    }
    EXPECT_EQ(save(certificate, false), 0) << szBuffErr;
    EXPECT_TRUE(pairWorks("DS3"));
}

TEST_F(Surroundings, TwoProcessesAtOnce) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(readAndRequest("DS5"));
    EXPECT_LE(in_child([&] { return readAndRequest("DS4"); }).code, 1);
    int there = 0;
    ::waitpid(child, &there, 0);
    EXPECT_TRUE(WIFEXITED(there) && WEXITSTATUS(there) <= 1) << there;
    for (const std::string pending : {"DS4", "DS5"}) {
        requestText = simcard::read_file(log.folder() / pending);
        EXPECT_TRUE(requestText.empty() || !issue().empty()) << pending;
        EXPECT_EQ(in_child([&] { return readAndRequest(pending); }).code, 0);
        before.insert(before.end(), {"private key " + pending, "public key " + pending});
    }
    const auto all = objects();
    EXPECT_TRUE(std::is_permutation(all.begin(), all.end(), before.begin(), before.end()));
}

} // namespace
