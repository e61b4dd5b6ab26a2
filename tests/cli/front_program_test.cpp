#include "tests/cli/program.h"

using namespace zvtest;

namespace {

// The program with a folder of its session, in which the front's links are.
class FrontTest : public ProgramTest {
  protected:
    FrontTest() {
        fs::create_directory(session());
        fs::permissions(session(), fs::perms::owner_all);
        ::setenv("XDG_RUNTIME_DIR", session().c_str(), 1);
    }
    ~FrontTest() override {
        ::unsetenv("XDG_RUNTIME_DIR");
        ::unsetenv("ZVRENEW_FRONT");
    }

    [[nodiscard]] fs::path session() const { return work() / "session"; }
    [[nodiscard]] std::string log() const {
        std::string text;
        for (const auto& entry : fs::recursive_directory_iterator(home()))
            if (entry.path().extension() == ".log") text += simcard::read_file(entry.path());
        return text;
    }
};

} // namespace

TEST_F(FrontTest, HasTheModuleStartedOnceACommand) {
    make_card();
    for (const char* command : {"list", "request signature --out r", "install c --remove-old"}) {
        const Outcome outcome = with_pin(command);
        EXPECT_EQ(outcome.code, 0) << command << outcome.err;
        EXPECT_EQ(outcome.count("C_Initialize"), 1U) << command;
        EXPECT_EQ(outcome.count("C_Finalize"), 1U) << command;
        EXPECT_EQ(outcome.calls.substr(outcome.calls.rfind("C_")), "C_Finalize pReserved=null -> 0x0\n");
        EXPECT_TRUE(fs::is_empty(session())) << command;
        if (fs::exists(file("r")) && !fs::exists(file("c"))) {
            ASSERT_EQ(tool("issue r --out c").code, 0);
        }
    }
    const Outcome examined = zvrenew("doctor");
    EXPECT_EQ(examined.count("C_Initialize"), 1U) << examined.out;
    EXPECT_EQ(examined.count("C_Finalize"), 1U);
    EXPECT_TRUE(examined.says("started once a command, through ")) << examined.out;
    // Whoever reads the log of what went well finds no failure that is not said to be none.
    const auto in_log = [all = log()](const std::string& text) {
        std::size_t found = 0;
        for (std::size_t at = 0; (at = all.find(text, at)) != std::string::npos; ++at)
            ++found;
        return found;
    };
    EXPECT_EQ(in_log("error!"), in_log("Errore voluto"));
    // The library's rules go by the file's name.
    EXPECT_NE(log().find("LoadLibrary: " + session().string() + "/zvrenew-front-"), std::string::npos);
    EXPECT_NE(log().find("/libzvsimcard.so"), std::string::npos);
    EXPECT_TRUE(zvrenew("readers --json").says(ZVSIMCARD_MODULE));
}

TEST_F(FrontTest, IsLeftOutWhereItIsNotWanted) {
    make_card();
    ::setenv("ZVRENEW_FRONT", "off", 1);
    const Outcome outcome = with_pin("request signature");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_GT(outcome.count("C_Initialize"), 1U);
    EXPECT_EQ(log().find(session()), std::string::npos);
    EXPECT_TRUE(zvrenew("doctor").says("started anew for each step"));
}

TEST_F(FrontTest, ClearsUpAfterItselfAndAfterOneThatWasKilled) {
    make_card();
    EXPECT_EQ(with_pin("request signature", "C_Login:2:kill-before").count("C_Finalize"), 0U);
    ASSERT_FALSE(fs::is_empty(session()));
    const fs::path left = fs::directory_iterator(session())->path();
    EXPECT_EQ(fs::status(left).permissions(), fs::perms::owner_all);
    EXPECT_EQ(with_pin("request signature").code, 0);
    EXPECT_TRUE(fs::exists(left)) << "it may be new";
    fs::last_write_time(left, fs::last_write_time(left) - std::chrono::minutes(5));
    // What somebody else has put there stays.
    const fs::path other = session() / "zvrenew-front-other0";
    fs::create_directory(other);
    fs::permissions(other, fs::perms::owner_all);
    std::ofstream(other / "file") << "mine";
    fs::last_write_time(other, fs::last_write_time(left));
    EXPECT_EQ(with_pin("request signature").code, 0);
    EXPECT_FALSE(fs::exists(left));
    EXPECT_TRUE(fs::exists(other / "file"));
}

TEST_F(FrontTest, SpendsOneTryOnAWrongPin) {
    make_card();
    give_pin("87654321");
    const Outcome outcome = with_pin("request signature");
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.count("C_Login"), 1U);
    EXPECT_EQ(outcome.count("C_Finalize"), 1U);
}

// Somebody else has logged in whom the card's module takes the program for: any PIN would pass for the right one.
TEST_F(FrontTest, ProvesThePinOfACardThatIsOpenAlready) {
    make_card();
    for (const char* front : {"on", "off"}) {
        ::setenv("ZVRENEW_FRONT", front, 1);
        give_pin("87654321");
        Outcome outcome = with_pin("request signature", "C_Login:1:answer:0x100");
        EXPECT_EQ(outcome.code, 1) << front << outcome.err;
        EXPECT_TRUE(outcome.says("The PIN is wrong")) << front << outcome.err;
        EXPECT_EQ(outcome.count("C_Login"), 2U) << front << ": one does not reach the card";
        EXPECT_FALSE(outcome.changed_card()) << front;
        give_pin(simcard::DEFAULT_PIN);
        outcome = with_pin("request signature", "C_Login:1+:answer:0x100");
        EXPECT_EQ(outcome.code, 1) << front << ": not proved" << outcome.err;
        EXPECT_FALSE(outcome.changed_card()) << front;
        EXPECT_EQ(with_pin("list", "C_Login:1:answer:0x100").code, 0) << front;
    }
}

TEST_F(FrontTest, RenewsOnSoftHsmAsItIs) {
    make_card();
    const fs::path softhsm = ZVSIMCARD_SOFTHSM_LIBRARY;
    // The slot's number is the end of the serial number; that of the blank one must not be its beginning.
    const Outcome set_up =
        shell("cd " + card_folder().string() +
              " && LC_ALL=C sed -i \"s/$(sed -n 's/^token *= *//p' card.ini)/0123456733333333/\" token.object"
              " && echo 'directories.tokendir = " +
              card_folder().parent_path().string() + "' >" + file("softhsm2.conf").string() +
              " && printf '[card made]\\natr = 3B80800101\\nmodule = " + softhsm.filename().string() +
              "\\n[reader made]\\nname = SoftHSM slot ID 0x33333333\\natr = 3B80800101\\n' >$ZVCRYPT_CONF");
    ASSERT_EQ(set_up.code, 0) << set_up.err;
    ::setenv("SOFTHSM2_CONF", file("softhsm2.conf").c_str(), 1);
    const std::string from = " --module-dir " + softhsm.parent_path().string();
    const Outcome made = with_pin("request signature --out r" + from);
    EXPECT_EQ(made.code, 0) << made.err;
    ASSERT_EQ(tool("issue r --out c").code, 0);
    const Outcome installed = with_pin("install c --remove-old" + from);
    EXPECT_EQ(installed.code, 0) << installed.err;
    ::setenv("ZVRENEW_FRONT", "off", 1);
    EXPECT_EQ(with_pin("request signature --force" + from).code, 2);
    ::unsetenv("SOFTHSM2_CONF");
}
