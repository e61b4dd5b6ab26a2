#include "tests/cli/program.h"

#include <algorithm>
#include <regex>

namespace {

namespace fs = std::filesystem;

using zvtest::Outcome;
using zvtest::ProgramTest;

class DoctorProgramTest : public ProgramTest {
  protected:
    // The doctor never logs in, whatever it finds, and changes no card.
    Outcome doctor(const std::string& arguments = {}, const std::string& rules = {}) {
        const Outcome outcome = zvrenew("doctor " + arguments, rules);
        EXPECT_EQ(outcome.count("C_Login"), 0U) << arguments;
        EXPECT_FALSE(outcome.changed_card()) << arguments;
        return outcome;
    }
    // What the doctor's only wrong finding advises, behind `before`.
    static std::string advised(const Outcome& outcome, const std::string& before) {
        const auto at = outcome.out.find(before);
        EXPECT_NE(at, std::string::npos) << outcome.out;
        return at == std::string::npos
                   ? ""
                   : outcome.out.substr(at + before.size(), outcome.out.find('\n', at) - at - before.size());
    }
    static std::size_t wrong(const Outcome& outcome) {
        const std::regex line("(^|\n)WRONG ");
        return static_cast<std::size_t>(std::distance(
            std::sregex_iterator(outcome.out.begin(), outcome.out.end(), line), std::sregex_iterator()));
    }
    [[nodiscard]] static fs::path configuration() { return ::getenv("ZVCRYPT_CONF"); }
};

TEST_F(DoctorProgramTest, FindsNothingWrongWithACardThatServes) {
    make_card();
    const Outcome outcome = doctor();
    EXPECT_EQ(outcome.code, 0) << outcome.out << outcome.err;
    EXPECT_EQ(wrong(outcome), 0U) << outcome.out;
    for (const char* part :
         {"ATR is 3B8880015A5653494D5349470F", "[card simulated signature] (line 1 of ",
          "libzvsimcard.so loads, starts", "is slot 0 of", "initialised.\n",
          "right    PIN: ", "right    clock: ", "right    log: ", "right    versions: Module: "})
        EXPECT_TRUE(outcome.says(part)) << part << "\n" << outcome.out;
    const auto json = nlohmann::json::parse(doctor("--json").out);
    EXPECT_EQ(json["result"], "done");
    EXPECT_GT(json["findings"].size(), 12U);
}

TEST_F(DoctorProgramTest, SaysOfATableWhatIsMissingSoThatItCanBePasted) {
    make_card();
    const std::string whole = simcard::read_file(configuration());
    const std::string readers = whole.substr(whole.find("[reader"));
    simcard::write_file(configuration(), readers, simcard::Access::owner_only);
    const Outcome unknown = doctor();
    EXPECT_EQ(unknown.code, 1);
    EXPECT_EQ(wrong(unknown), 1U) << unknown.out;
    std::string lines = unknown.out.substr(unknown.out.find("[card NAME]"));
    lines = std::regex_replace(lines.substr(0, lines.find("MODULE.so")), std::regex("NAME"), "mine") +
            "libzvsimcard.so\n";
    simcard::write_file(configuration(), readers + lines, simcard::Access::owner_only);
    const Outcome mended = doctor();
    EXPECT_EQ(mended.code, 0) << mended.out;
    EXPECT_TRUE(mended.says("[card mine] (line ")) << mended.out;
    std::ofstream(file("zvcrypt.conf")) << "[card hidden]\n";
    EXPECT_TRUE(shell("XDG_CONFIG_HOME=$PWD " + command("doctor"))
                    .says(file("zvcrypt.conf").string() + " is not read"));

    simcard::write_file(configuration(), readers + "[card x]\natr = 3B\n", simcard::Access::owner_only);
    const Outcome malformed = doctor();
    EXPECT_EQ(malformed.code, 1);
    EXPECT_TRUE(malformed.says("riga ")) << malformed.out;
    EXPECT_TRUE(malformed.says("WRONG    configuration: ")) << malformed.out;
    EXPECT_FALSE(malformed.says("right    configuration: ")) << malformed.out;
}

TEST_F(DoctorProgramTest, OutlivesAModuleThatDoesNotServe) {
    make_card();
    for (const char* call :
         {"C_Initialize", "C_GetSlotList", "C_GetTokenInfo", "C_FindObjects", "C_Finalize"}) {
        const Outcome killed = doctor({}, std::string(call) + ":1:kill-before");
        EXPECT_EQ(killed.code, 1) << call;
        EXPECT_TRUE(killed.says("libzvsimcard.so crashed (signal 9) while ")) << call << killed.out;
    }
    EXPECT_TRUE(doctor({}, "C_Initialize:*:answer:0x5").says("does not start (C_Initialize answered 5)"));
    EXPECT_EQ(doctor({}, "C_GetSlotList:*:answer:0x5").code, 1);
    EXPECT_EQ(doctor({}, "C_GetInfo:*:absurd:text").code, 0) << "bounded";

    simcard::write_file(file("libzvsimcard.so"), "no library", simcard::Access::everyone_reads);
    const Outcome text = doctor("--module-dir " + work().string());
    EXPECT_EQ(text.code, 1);
    EXPECT_TRUE(text.says("cannot be loaded: ")) << text.out;
    EXPECT_TRUE(text.says("as --module-dir says")) << text.out;
    EXPECT_NE(shell(advised(text, "tells: ")).code, 127) << "there is such a command";
    EXPECT_TRUE(doctor("--module-dir " + home().string()).says("WRONG    module: "));
}

TEST_F(DoctorProgramTest, TellsOfACardThatCannotBeUsedYet) {
    make_card();
    give_pin("9999");
    (void)with_pin("list");
    (void)with_pin("list");
    const Outcome last = doctor();
    EXPECT_EQ(last.code, 0);
    EXPECT_TRUE(last.says("warning  PIN: One try is left")) << last.out;
    give_pin(simcard::DEFAULT_PIN);
    EXPECT_EQ(with_pin("list --final-try").code, 0) << "as advised";
    EXPECT_TRUE(doctor().says("right    PIN: "));
    give_pin("9999");
    for (const char* arguments : {"list", "list", "list --final-try"})
        (void)with_pin(arguments);
    EXPECT_TRUE(doctor().says("WRONG    PIN: The PIN is locked."));

    ASSERT_EQ(tool("create --name two --reader Simulated --config " + configuration().string()).code, 0);
    const Outcome alike = doctor();
    EXPECT_EQ(alike.code, 1);
    EXPECT_TRUE(alike.says("WRONG    slots: ")) << alike.out;
    ASSERT_EQ(tool("eject two").code, 0);
    EXPECT_TRUE(doctor().says("right    slots: \"Simulated Reader 0\"")) << "as advised";
}

TEST_F(DoctorProgramTest, RemovesWhatIsInTheWayAsItAdvises) {
    make_card();
    fs::create_directory(ZV_SIGNED_FILE);
    const Outcome folder = doctor();
    EXPECT_EQ(folder.code, 1);
    EXPECT_EQ(wrong(folder), 1U) << folder.out;
    EXPECT_EQ(shell(advised(folder, "Remove it: ")).code, 0);
    simcard::write_file(ZV_REQUEST_FILE, "x", simcard::Access::owner_only);
    const Outcome left = doctor();
    EXPECT_EQ(left.code, 0);
    EXPECT_TRUE(left.says("warning  temporary files: ")) << left.out;
    EXPECT_EQ(shell(advised(left, "Remove it: ")).code, 0);
    fs::remove_all(home() / ".trevallo");
    simcard::write_file(home() / ".trevallo", "x", simcard::Access::owner_only);
    const Outcome log = doctor();
    EXPECT_EQ(log.code, 1);
    EXPECT_TRUE(log.says("WRONG    log: ")) << log.out;
    EXPECT_EQ(shell(advised(log, "Remove it: ")).code, 0);
    const Outcome mended = doctor();
    EXPECT_EQ(mended.code, 0) << mended.out;
    EXPECT_FALSE(mended.says("temporary files: " ZV_TEMP_FOLDER "/")) << mended.out;
}

TEST_F(DoctorProgramTest, SavesAFileOfItsOwnForAHelpDesk) {
    make_card();
    simcard::write_file(file("mine"), "x", simcard::Access::everyone_reads);
    EXPECT_EQ(zvrenew("doctor --bundle mine").code, 2);
    EXPECT_EQ(simcard::read_file(file("mine")), "x");
    EXPECT_EQ(doctor("--bundle b").code, 0);
    EXPECT_EQ(fs::status(file("b")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

#ifdef __linux__
TEST_F(DoctorProgramTest, NamesTheProgramThatHoldsTheCard) {
    make_card();
    std::ofstream(file("hold.py")) << "import mmap, time\nfile = open('" ZVSIMCARD_MODULE "', 'rb')\n"
                                   << "held = mmap.mmap(file.fileno(), 0, prot=mmap.PROT_READ)\n"
                                   << "open('held', 'w')\ntime.sleep(600)\n";
    const Outcome held = shell("sh -c 'python3 hold.py >/dev/null 2>&1 & echo $! >process'; "
                               "for i in $(seq 600); do [ -e held ] && break; sleep 0.1; done; " +
                               command("doctor"));
    const std::string end = "kill " + simcard::read_file(file("process"));
    EXPECT_TRUE(held.says("or end it with: " + end)) << held.out; // beside other programs of this machine
    EXPECT_EQ(
        shell(
            "$(cat process | sed 's/^/kill /'); while kill -0 $(cat process) 2>/dev/null; do sleep 0.1; done")
            .code,
        0);
    EXPECT_FALSE(doctor().says(end));
}
#endif

// What a help desk gets, and what could be read out of it: base64 runs in it are undone, and what they hold again.
class HelpDeskTest : public DoctorProgramTest {
  protected:
    static constexpr const char* PIN = "87654321";

    // A renewal, which leaves the holder's name in the log in every form, and what others may have written there.
    HelpDeskTest() {
        make_card();
        EXPECT_EQ(with_pin("request signature --out s").code, 0);
        EXPECT_EQ(tool("issue s --out c").code, 0);
        EXPECT_EQ(with_pin("install c").code, 0);
        std::ofstream(home() / ".trevallo/zvRenew.log", std::ios::app)
            << "PIN=" << PIN << "\nszpin:" << PIN << "\n{\"pin\": \"" << PIN << "\"}\npin " << PIN << "\n"
            << "DN_surname = Collaudo\n/C=IT/CN=Bice Altra/SN=Altra\nMario TINIT-RSSMRA80A01H501U\n"
            << "41 64 61 20 43 6F 6C 6C 61 75 64 6F\n"
            << "collaudo@esempio.it di ADA COLLAUDO, " << home().string() << "/x\n"
            << "avviato da gianfilippa\n";
    }
    std::string bundle(const std::string& arguments, int code = 0) {
        ::setenv("LOGNAME", "gianfilippa", 1);
        const Outcome outcome = doctor("--bundle b " + arguments);
        ::unsetenv("LOGNAME");
        EXPECT_EQ(outcome.code, code) << outcome.out << outcome.err;
        const std::string text = simcard::read_file(file("b"));
        fs::remove(file("b"));
        return text + undone(text) + undone(undone(text));
    }
    static std::string undone(const std::string& text) {
        std::string all;
        const std::regex run("[A-Za-z0-9+/\n]{8,}");
        for (std::sregex_iterator it(text.begin(), text.end(), run), end; it != end; ++it)
            for (std::size_t skipped = 0; skipped < 4; ++skipped)
                all += from_base64(it->str().substr(skipped)) + "\n";
        return all;
    }
    static std::string from_base64(const std::string& text) {
        const std::string digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        std::string out;
        unsigned bits = 0, count = 0;
        for (const char c : text) {
            if (c == '\n') continue;
            bits = bits << 6U | static_cast<unsigned>(digits.find(c));
            if ((count += 6) >= 8) out += static_cast<char>(bits >> (count -= 8) & 0xFFU);
        }
        return out;
    }
    static bool holds(const std::string& text, const std::string& part) {
        return std::search(text.begin(), text.end(), part.begin(), part.end(), [](char a, char b) {
                   return std::tolower(static_cast<unsigned char>(a)) ==
                          std::tolower(static_cast<unsigned char>(b));
               }) != text.end();
    }
};

TEST_F(HelpDeskTest, GetsNoNameAndNoPin) {
    const std::string masked = bundle({});
    for (const std::string part :
         {"Collaudo", "Ada ", "CLLDAA80A41Z999U", "RSSMRA80A01H501U", "Altra", "esempio.it",
          "436F6C6C6175646F", "43 6F 6C 6C", "gianfilippa", PIN, "12345678"})
        EXPECT_FALSE(holds(masked, part)) << part;
    EXPECT_FALSE(holds(masked, home())) << masked.substr(masked.find(home()) - 200, 400);
    for (const char* part : {"right    card: ", "3B8880015A5653494D5349470F", "== log ==", "C_GetSlotList",
                             "[card simulated signature]", "\"days_left\"", "ZVCRYPT_CONF="})
        EXPECT_TRUE(holds(masked, part)) << part;
    const std::string named = bundle("--with-names");
    EXPECT_TRUE(holds(named, "Collaudo"));
    EXPECT_TRUE(holds(named, "CLLDAA80A41Z999U"));
    EXPECT_FALSE(holds(named, PIN));

    ASSERT_EQ(tool("eject card").code, 0);
    const std::string blind = bundle({}, 1);
    for (const char* part : {"CLLDAA80A41Z999U", "Bice", "esempio.it", "2.5.4.3=Ada", "DN_surname = C", PIN})
        EXPECT_FALSE(holds(blind, part)) << "by its form alone: " << part;
}

} // namespace
