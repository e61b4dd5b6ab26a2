#include "simcard/common/card_folder.h"
#include "tests/cli/program.h"

#include <fcntl.h>
#include <sys/file.h>

#include <csignal>
#include <set>

namespace {

using zvtest::Outcome;
using zvtest::ProgramTest;
namespace fs = std::filesystem;

class RehearseProgramTest : public ProgramTest {
  protected:
    RehearseProgramTest() { fs::create_directory(temporary()); }
    ~RehearseProgramTest() override { ::unsetenv("TMPDIR"); }

    [[nodiscard]] fs::path temporary() const { return home() / "tmp"; }

    // The card must only be read, without its PIN, and nothing must be left of the twin.
    Outcome rehearse(const std::string& arguments) {
        ::setenv("TMPDIR", temporary().c_str(), 1);
        const Outcome outcome = zvrenew("rehearse " + arguments);
        EXPECT_GT(outcome.count("C_FindObjects"), 0U);
        EXPECT_EQ(outcome.count("C_Login"), 0U);
        EXPECT_FALSE(outcome.changed_card());
        expect_nothing_left();
        return outcome;
    }
    void expect_nothing_left() {
        EXPECT_TRUE(fs::is_empty(temporary()));
        EXPECT_TRUE(fs::is_empty(work()));
        for (const auto& entry : fs::recursive_directory_iterator(home()))
            EXPECT_TRUE(entry.is_directory()) << entry.path();
    }
    // The program where the tool of the simulated card is this script; no module is there unless it is put there.
    std::string elsewhere(const std::string& script) {
        const fs::path bin = home().parent_path() / "else" / "bin";
        fs::create_directories(bin);
        fs::copy_file(ZVRENEW, bin / "zvrenew");
        if (!script.empty()) {
            simcard::write_file(bin / "zvsimcard-tool", script, simcard::Access::owner_only);
            fs::permissions(bin / "zvsimcard-tool", fs::perms::owner_all);
        }
        std::string line = command("rehearse signature");
        line.replace(line.rfind(ZVRENEW), std::string(ZVRENEW).size(), (bin / "zvrenew").string());
        return "TMPDIR=" + temporary().string() +
               " PATH=/usr/bin:/bin LD_LIBRARY_PATH=" + fs::path(ZVSIMCARD_MODULE).parent_path().string() +
               " " + line;
    }
};

std::multiset<std::string> pairs(const nlohmann::json& objects) {
    std::multiset<std::string> ids;
    for (const auto& object : objects)
        if (object["class"] == "private key") ids.insert(object["id"]);
    return ids;
}

TEST_F(RehearseProgramTest, RenewsOnATwinAndLeavesTheCardAlone) {
    make_card();
    const Outcome words = rehearse("signature");
    EXPECT_EQ(words.code, 0) << words.out << words.err;
    EXPECT_TRUE(words.says("The renewal would go through.")) << words.out;
    EXPECT_FALSE(words.says(temporary().string())) << words.out;

    const auto removing = nlohmann::json::parse(rehearse("signature --remove-old --json --lang it").out);
    EXPECT_EQ(pairs(removing["before"]), (std::multiset<std::string>{"AUTHCertificate0", "DS0"}));
    EXPECT_EQ(pairs(removing["after"]), (std::multiset<std::string>{"AUTHCertificate0", "DS3"}));
    ASSERT_EQ(removing["steps"].size(), 3U);
    EXPECT_TRUE(std::string(removing["steps"][2]["text"]).starts_with("Il nuovo certificato di firma"))
        << removing;
    EXPECT_EQ(rehearse("authentication --force").code, 0) << "as advised when nothing is due";
}

TEST_F(RehearseProgramTest, RenewsAServicesCardsOwnCertificate) {
    make_card(12, "cns");
    const auto told = nlohmann::json::parse(rehearse("services --remove-old --json").out);
    EXPECT_EQ(told["result"], "done") << told;
    EXPECT_EQ(pairs(told["after"]), (std::multiset<std::string>{"CNS0"}));
}

TEST_F(RehearseProgramTest, ShowsThatTheCardIsFull) {
    make_card();
    simcard::update_card(card_folder(), [](simcard::Card& card) { card.memory_left = 2000; });
    const Outcome full = rehearse("signature");
    EXPECT_EQ(full.code, 1) << full.out;
    EXPECT_TRUE(full.says("2000 bytes are free")) << full.out;
    EXPECT_TRUE(full.says("would not go through")) << full.out;
    EXPECT_EQ(with_pin("request signature --out r").code, 0) << "what fits is the pair";
    EXPECT_TRUE(tool("issue r --out c").code == 0 && with_pin("install c --request r").code == 1)
        << "as rehearsed";
}

TEST_F(RehearseProgramTest, NamesThePackageOfTheSimulatedCard) {
    make_card();
    const Outcome none = shell(elsewhere(""));
    EXPECT_EQ(none.code, 2);
    EXPECT_TRUE(none.says("zvsimcard")) << none.err;
    expect_nothing_left();
}

TEST_F(RehearseProgramTest, LeavesNothingWhenASignalEndsIt) {
    make_card();
    const std::string line = elsewhere("#!/bin/sh\n: > \"${0%/*}/started\"\nexec sleep 600\n");
    const fs::path prefix = home().parent_path() / "else";
    fs::create_directory(prefix / "lib");
    fs::copy_file(ZVSIMCARD_MODULE, prefix / "lib" / fs::path(ZVSIMCARD_MODULE).filename());
    const Outcome ended = shell(line + " & p=$!; until [ -e " + (prefix / "bin" / "started").string() +
                                " ]; do sleep 0.05; done; kill $p; wait $p");
    EXPECT_EQ(ended.code, 128 + SIGTERM) << ended.err;
    expect_nothing_left();
}

TEST_F(RehearseProgramTest, ClearsUpAfterOneThatWasKilled) {
    make_card();
    const fs::path left = temporary() / "zvrenew-rehearsal-killed";
    ASSERT_EQ(shell("mkdir -p -m 700 " + left.string() + " && mkdir " + left.string() +
                    "/cards && touch -d yesterday " + left.string())
                  .code,
              0);
    const int held = ::open(left.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(held, LOCK_EX), 0);
    ::setenv("TMPDIR", temporary().c_str(), 1);
    EXPECT_EQ(zvrenew("rehearse signature").code, 0);
    EXPECT_TRUE(fs::exists(left)) << "it is another's that still runs";
    ::close(held);
    EXPECT_EQ(rehearse("signature").code, 0);
}

} // namespace
