// The program as a person or a script runs it: its exit codes, what it says, and what it never deletes.
#include "tests/simcard_tool/test_cards.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>

namespace {

using namespace simcard;
namespace fs = std::filesystem;

struct Outcome {
    int code;
    std::string text; // what it printed, errors included
};

class ProgramTest : public testing::Test {
  protected:
    static Outcome run(const std::string& arguments) { return shell(ZVSIMCARD_TOOL " " + arguments); }

    static Outcome shell(const std::string& command) {
        FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
        std::string text;
        std::array<char, 512> piece{};
        while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe))
            text.append(piece.data(), count);
        return {WEXITSTATUS(::pclose(pipe)), text};
    }

    static bool says(const Outcome& outcome, const std::string& text) {
        return outcome.text.find(text) != std::string::npos;
    }

    TestCards cards;
    std::string with_keys = " --keys " ZV_TEST_KEYS;
};

TEST_F(ProgramTest, TakesACardThroughItsLife) {
    const Outcome made = run("create --name demo --serial 42 --days 20" + with_keys);
    ASSERT_EQ(made.code, 0) << made.text;
    EXPECT_TRUE(says(run("list"), "demo  Simulated Reader 0  signature  42      in    3 of 3"));
    EXPECT_FALSE(says(run("list demo"), "private key"));
    EXPECT_TRUE(says(run("list demo --pin 12345678"), "private key  DS0"));
    EXPECT_TRUE(says(run("list demo --json"), "\"pin_tries_left\": 3"));
    EXPECT_EQ(run("eject demo").code, 0);
    EXPECT_TRUE(says(run("list"), " out "));
    EXPECT_EQ(run("insert demo").code, 0);
    EXPECT_EQ(run("insert demo").code, 2);
    EXPECT_EQ(run("reset demo").code, 0);
    EXPECT_EQ(run("remove demo").code, 0);
    EXPECT_FALSE(fs::exists(cards.path() / "demo"));
}

TEST_F(ProgramTest, IssuesACertificateOrLeavesNoFile) {
    ASSERT_EQ(run("create --name demo" + with_keys).code, 0);
    const std::string folder = cards.path().string() + "/", request = folder + "request.pem ";
    ASSERT_EQ(shell("openssl req -new -subj /serialNumber=TINIT-CLLDAA80A41Z999U -key " ZV_TEST_KEYS
                    " -out " +
                    request)
                  .code,
              0);
    const std::string issue = "issue " + request + "--kind signature --out " + folder;
    EXPECT_EQ(run(issue + "never.pem").code, 2);
    EXPECT_EQ(run(issue + "never.pem --bare --days 0").code, 2);
    EXPECT_FALSE(fs::exists(folder + "never.pem"));
    const Outcome issued = run(issue + "new.pem --bare --days 7");
    EXPECT_EQ(issued.code, 0);
    EXPECT_TRUE(says(issued, "kind signature for serialNumber=TINIT-CLLDAA80A41Z999U, for 7 days"))
        << issued.text;
}

TEST_F(ProgramTest, TellsRefusedFromFailed) {
    EXPECT_EQ(run("").code, 2);
    EXPECT_EQ(run("create --days soon").code, 2);
    EXPECT_EQ(run("create --profile passport").code, 2);
    EXPECT_EQ(run("issue " + (cards.path() / "nothing").string()).code, 2);
    const Outcome failed = run("--home /dev/null/cards create");
    EXPECT_EQ(failed.code, 1) << failed.text;
}

TEST_F(ProgramTest, RemovesNothingButCards) {
    const Card card = cards.make();
    const fs::path other = cards.path() / "holiday photos";
    fs::create_directory(other);
    fs::create_directory_symlink(card.folder, cards.path() / "link");
    for (const std::string name :
         {"'holiday photos'", ".authority", ".", "..", "''", "link", "card/as-made", "nobody"})
        EXPECT_EQ(run("remove " + name).code, 2) << name;
    EXPECT_TRUE(fs::exists(other));
    EXPECT_TRUE(fs::exists(card.folder / "as-made" / "card.ini"));
    EXPECT_TRUE(fs::exists(cards.path() / ".authority" / "key.pem"));
}

} // namespace
