// A reader or a card that is not there yet.
#include "tests/cli/program.h"

namespace {

using zvtest::Outcome;
using zvtest::ProgramTest;

class WaitProgramTest : public ProgramTest {
  protected:
    // Waits for a card that is out, and does `then` when the program says that it waits. $waiting is its process.
    Outcome wait_and(const std::string& then) {
        EXPECT_EQ(tool("eject card").code, 0);
        return shell("{ : >said; (exec timeout --foreground 60 " + command("status --wait") +
                     " 2>said) & waiting=$!; until grep -q Waiting said; do sleep 0.1; done; " + then +
                     "; wait $waiting; }");
    }
};

TEST_F(WaitProgramTest, GoesOnWhenTheCardIsPutInAndEndsWhenToldTo) {
    make_card(800);
    EXPECT_EQ(wait_and(ZVSIMCARD_TOOL " insert card >none").code, 0);
    for (const char* signal : {"TERM", "HUP"}) {
        const Outcome outcome = wait_and(std::string("kill -") + signal + " $waiting");
        EXPECT_EQ(outcome.code, 2) << signal;
        EXPECT_EQ(simcard::read_file(file("said")).find("Waiting", 1), std::string::npos)
            << "it says so once";
    }
}

TEST_F(WaitProgramTest, WaitsNoLongerThanItMay) {
    make_card();
    EXPECT_EQ(tool("eject card").code, 0);
    Outcome outcome = zvrenew("status --wait=0");
    EXPECT_NE(outcome.code, 0);
    EXPECT_FALSE(outcome.says("Waiting"));
    outcome = zvrenew("status --wait=soon");
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.calls, "");
}

} // namespace
