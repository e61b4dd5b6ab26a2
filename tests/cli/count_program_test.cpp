#include "tests/cli/program.h"

#include <algorithm>

// How often a command starts the card's module, logs in and calls it: each costs time, the same on every computer.

using namespace zvtest;

namespace {

class CountTest : public ProgramTest {
  protected:
    struct Cost {
        std::size_t logins;
        long calls; // at most
    };

    void expect(const std::string& command, int code, Cost cost) {
        const Outcome done = command.starts_with("status") ? zvrenew(command) : with_pin(command);
        EXPECT_EQ(done.code, code) << command << done.err;
        EXPECT_EQ(done.count("C_Initialize"), 1U) << command;
        EXPECT_EQ(done.count("C_Login"), cost.logins) << command;
        EXPECT_EQ(done.count("C_SetAttributeValue"), 0U) << command; // what is there is not written again
        EXPECT_LE(std::count(done.calls.begin(), done.calls.end(), '\n'), cost.calls) << command;
    }
    void issue() { ASSERT_EQ(tool("issue r --out c").code, 0); }
};

} // namespace

TEST_F(CountTest, OfASignatureCard) {
    make_card();
    expect("status", 10, {0, 20});
    expect("list", 0, {1, 23});
    expect("free-id", 0, {1, 23});
    expect("request signature --out r", 0, {3, 119});
    issue();
    expect("install c --request r --remove-old", 0, {3, 109});
    expect("remove DS3 --last", 0, {2, 50});
}

TEST_F(CountTest, OfARenewalInOneCommand) {
    make_card();
    expect("renew signature --remove-old --ca-command 'cat >r && " ZVSIMCARD_TOOL
           " issue r --out c && cat c'",
           0, {8, 274});
}

TEST_F(CountTest, OfAServicesCard) {
    make_card(12, "cns");
    expect("status", 10, {0, 19});
    expect("list", 0, {1, 21});
    expect("request services --out r", 0, {4, 101});
    issue();
    expect("install c --request r --remove-old", 0, {3, 80});
}
