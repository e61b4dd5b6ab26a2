// Where the PIN may come from, and what a card gets of it.
#include "tests/cli/program.h"

namespace {

using zvtest::Outcome;
using zvtest::ProgramTest;
namespace fs = std::filesystem;

class PinSourceProgramTest : public ProgramTest {
  protected:
    // The program with a pinentry that answers so, and notes what it is told.
    Outcome with_pinentry(const std::string& arguments, const std::string& answer) {
        simcard::write_file(file("pinentry"),
                            "#!/bin/sh\necho OK\nwhile read -r line; do echo \"$line\" >>told\n"
                            "case $line in GETPIN) echo '" +
                                answer + "' ;; esac; echo OK; done\n",
                            simcard::Access::owner_only);
        fs::permissions(file("pinentry"), fs::perms::owner_all);
        return shell("PATH=$PWD:$PATH " + command(arguments + " --pinentry"));
    }
    void edit_card(const std::string& script) {
        ASSERT_EQ(shell("sed -i '" + script + "' $ZVSIMCARD_HOME/*/card.ini").code, 0);
    }
};

TEST_F(PinSourceProgramTest, TakesALineFromADescriptor) {
    make_card();
    EXPECT_EQ(zvrenew("list --pin-fd 7 7<" + pin_file().string()).code, 0);
    EXPECT_EQ(shell("{ cat " + pin_file().string() + "; echo more; } | " + command("list --pin-fd 0")).code,
              0);
    give_pin("12345678 ");
    for (const char* wrong : {"9 9<&-", "1", "-1", "seven", "0 </dev/null", "0 <.", "0 <../pin"}) {
        const Outcome outcome = zvrenew(std::string("list --pin-fd ") + wrong);
        EXPECT_EQ(outcome.code, 2) << wrong << outcome.err;
        EXPECT_EQ(outcome.calls, "") << wrong;
    }
}

TEST_F(PinSourceProgramTest, HasAnotherProgramAskForIt) {
    make_card();
    const Outcome outcome = with_pinentry("list", "D 12345678");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(simcard::read_file(file("told")).find("in \"Simulated Reader 0\""), std::string::npos);
    for (const char* none : {"ERR 83886179 Operation cancelled", "D 1234%", "OK"}) {
        const Outcome stopped = with_pinentry("list", none);
        EXPECT_EQ(stopped.code, 2) << stopped.err;
        EXPECT_EQ(stopped.count("C_Login"), 0U) << none;
    }
}

TEST_F(PinSourceProgramTest, RefusesMoreThanOneSource) {
    make_card();
    for (const char* sources :
         {"--pin-file p --pin-fd 0", "--pin-fd 0 --pinentry", "--pinentry --pin-file p"}) {
        const Outcome outcome = zvrenew(std::string("list ") + sources);
        EXPECT_EQ(outcome.code, 2) << sources;
        EXPECT_TRUE(outcome.says("--pin-file")) << outcome.err;
        EXPECT_EQ(outcome.calls, "") << sources;
    }
}

TEST_F(PinSourceProgramTest, SaysThatAReadersKeypadIsNotUsed) {
    make_card();
    EXPECT_EQ(json("list")["keypad"], false);
    edit_card("s/^keypad = no/keypad = yes/");
    EXPECT_EQ(json("list")["keypad"], true);
    EXPECT_TRUE(zvrenew("readers --json").says("\"keypad\": true"));
    EXPECT_EQ(with_pinentry("list", "D 12345678").code, 0);
    EXPECT_NE(simcard::read_file(file("told")).find("keypad"), std::string::npos);
}

// Whoever answers for the card from then on, the PIN may have gone to another card than the one that took it before.
TEST_F(PinSourceProgramTest, SendsNoPinAgainThatTheCardRefused) {
    make_card();
    for (const char* command : {"list", "free-id", "request signature --force --out request"})
        for (int login = 1, last = 0; last == 0; ++login) {
            fs::remove(file("request"));
            const Outcome outcome = with_pin(command, "C_Login:" + std::to_string(login) + ":answer:0xA0");
            if (outcome.code == 0) last = login;
            const auto refused = outcome.calls.find("-> 0xa0");
            EXPECT_TRUE(refused == std::string::npos ||
                        outcome.calls.find("\nC_Login", refused) == std::string::npos)
                << command << ", login " << login << ": " << outcome.err;
            ASSERT_LT(login, 20);
        }
}

} // namespace
