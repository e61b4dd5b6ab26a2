#include "host/signed_request.h"
#include "tests/cli/program.h"

namespace {

using zvtest::Outcome;
using zvtest::ProgramTest;

class RequestProgramTest : public ProgramTest {
  protected:
    zvhost::Bytes key_of(const std::string& name) {
        return zvhost::modulus_of_request(simcard::read_file(file(name)));
    }
    // How often a key was given the PIN.
    static std::size_t signature_pins(const Outcome& outcome) {
        std::size_t found = 0;
        for (std::size_t at = 0; (at = outcome.calls.find(" userType=2 ", at)) != std::string::npos; ++at)
            ++found;
        return found;
    }
    // Does it beside the command that follows, as soon as the card has been asked that.
    std::string once(const std::string& call, const std::string& deed) {
        return "{ (timeout 20 sh -c 'until grep -sq " + call + " " + trace().string() +
               "; do sleep 0.02; done'; " + deed + ") & }; ";
    }
};

TEST_F(RequestProgramTest, StopsWhenNothingIsDueUnlessForced) {
    make_card(200);
    const Outcome outcome = with_pin("request signature --out r");
    EXPECT_EQ(outcome.code, 3) << outcome.err;
    EXPECT_FALSE(outcome.changed_card());
    EXPECT_FALSE(std::filesystem::exists(file("r")));
    EXPECT_EQ(with_pin("request signature --days 300 --out r").code, 0);
    EXPECT_EQ(with_pin("request authentication --force --out a").code, 0);
    EXPECT_FALSE(key_of("r").empty());
    EXPECT_NE(key_of("a"), key_of("r"));
}

TEST_F(RequestProgramTest, RefusesASubjectAndAFileBeforeAnyCall) {
    make_card();
    simcard::write_file(file("there"), "mine", simcard::Access::owner_only);
    for (const char* options : {"--subject /OU=1/OU=2/OU=3/OU=4/OU=5/OU=6", "--subject Ada",
                                "--subject 9.9=Ada", "--out there", "--out no/such/folder"}) {
        const Outcome outcome = with_pin(std::string("request signature ") + options);
        EXPECT_EQ(outcome.code, 2) << options;
        EXPECT_EQ(outcome.calls, "") << options;
    }
    EXPECT_EQ(simcard::read_file(file("there")), "mine");
}

TEST_F(RequestProgramTest, UsesTheWaitingPairAgainOrDiscardsIt) {
    make_card();
    EXPECT_TRUE(with_pin("request signature --out one").says("Subject: C=IT, O=Non presente, CN="));
    const auto list = json("list");
    ASSERT_EQ(list["pending"].size(), 1U);
    EXPECT_EQ(list["pending"][0]["id"], "DS3");
    EXPECT_TRUE(with_pin("list").says("waits for its certificate"));

    const Outcome again = with_pin("request signature --out two");
    EXPECT_EQ(again.count("C_GenerateKeyPair"), 0U);
    EXPECT_EQ(key_of("two"), key_of("one"));
    const Outcome fresh = with_pin("request signature --new-pair --out three --subject '/C=IT/CN=Città'");
    EXPECT_EQ(fresh.code, 0) << fresh.err;
    EXPECT_TRUE(fresh.says("Subject: C=IT, CN=Città\n")) << fresh.out;
    EXPECT_NE(key_of("three"), key_of("one"));
    EXPECT_EQ(json("list")["pending"].size(), 1U);
    EXPECT_TRUE(
        with_pin("request signature --new-pair", "C_DestroyObject:1:answer:0x6").says("not discarded yet"));
    (void)with_pin("request signature --new-pair", "C_DestroyObject:1:kill-after");
    EXPECT_TRUE(with_pin("request signature").says("whole: DS3. The card's own software can remove it"));
}

TEST_F(RequestProgramTest, SaysWhatIsOnTheCardAfterAFailure) {
    make_card();
    const Outcome full = with_pin("request signature --out r", "C_GenerateKeyPair:1:answer:0x31");
    EXPECT_EQ(full.code, 1);
    EXPECT_TRUE(full.says("Errore nella generazione delle chiavi sulla smartcard (error 31)")) << full.err;
    EXPECT_TRUE(full.says("Now on the card: DS0 (certificate and keys)")) << full.err;
    EXPECT_FALSE(std::filesystem::exists(file("r")));
    Outcome reading = with_pin("request signature --days 1 --out r");
    reading.calls.resize(reading.calls.find("CKA_MODULUS 1024>1844"));
    const std::size_t nth =
        reading.count("C_GetAttributeValue"); // the certificate; then one by one, two calls each
    EXPECT_TRUE(with_pin("request signature --out r",
                         "C_GetAttributeValue:" + std::to_string(nth) +
                             ":answer:0x12;C_GetAttributeValue:" + std::to_string(nth + 8) + ":absurd:text")
                    .says("DS0 is on the card, but could not be read"));

    const Outcome unsigned_one = with_pin("request signature --out r", "C_Sign:1:absurd:brief");
    EXPECT_EQ(unsigned_one.code, 1);
    EXPECT_TRUE(unsigned_one.says("DS3 (keys without a certificate)")) << unsigned_one.err;
    EXPECT_TRUE(unsigned_one.says("repeat the request with --new-pair")) << unsigned_one.err;
    EXPECT_EQ(with_pin("request signature --out new --new-pair").code, 0);
    EXPECT_TRUE(
        with_pin("request signature --out r", "C_Sign:1:answer:0x101").says("it will use the pair DS3"));

    const Outcome open = with_pin("request signature --out r", "C_Sign:2:answer:0x30");
    EXPECT_TRUE(open.says("DS3 (keys without a certificate)")) << "logged in still: " << open.err;

    const Outcome pulled = with_pin("request signature --out r", "C_SignInit:1:take-out");
    EXPECT_EQ(pulled.code, 1);
    EXPECT_TRUE(pulled.says("Now on the card: cannot be read")) << pulled.err;
    ASSERT_EQ(tool("insert card").code, 0);
    EXPECT_EQ(with_pin("request signature --out r").code, 0);
}

TEST_F(RequestProgramTest, SaysWhatComesOfKeysThatWantThePinEachTime) {
    make_card(12, "signature-pin");
    ::setenv("ZVSIMCARD_KEYS", file("keys").c_str(), 1); // its first key is DS3 each time
    const Outcome made = with_pin("request signature --out r");
    EXPECT_EQ(made.code, 1);
    EXPECT_LT(made.err.find("The key DS0 wants the PIN before each"), made.err.find("is generating"))
        << made.err;
    EXPECT_TRUE(made.says("DS3 (keys without a certificate)")) << made.err;
    for (const char* command : {"request signature", "request signature --new-pair"}) {
        const Outcome again = with_pin(command);
        EXPECT_EQ(again.code, 2) << command;
        EXPECT_TRUE(again.says("DS3 cannot sign its request")) << again.err;
        EXPECT_FALSE(again.changed_card());
    }
    EXPECT_EQ(json("list")["advice"][1]["key"], "pin-each-signature");
    // Where only the old key is so, it is given the PIN and signs, once that is the one it wants.
    const auto set = [&](const std::string& lines) {
        ASSERT_EQ(shell("sed -i '/^pin_each\\|^signature_pin/d' $ZVSIMCARD_HOME/card/card.ini && printf '" +
                        lines + "' >>$ZVSIMCARD_HOME/card/card.ini")
                      .code,
                  0);
    };
    ASSERT_EQ(tool("reset card").code, 0);
    set("signature_pin = 2468\n");
    const Outcome refused = with_pin("request signature --out r");
    EXPECT_EQ(refused.code, 1);
    EXPECT_LT(refused.err.find("costs one of its tries"), refused.err.find("is generating")) << refused.err;
    EXPECT_TRUE(refused.says("Do not run the same command again as it is: the key DS0")) << refused.err;
    set("");
    Outcome outcome = with_pin("request signature --out r");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.count("C_GenerateKeyPair"), 0U);
    ASSERT_EQ(tool("issue r --out c").code, 0);
    // The same pair, wanting the PIN: an installation gives it once, and does with a comparison where it is refused.
    for (const std::string own : {"", "signature_pin = 2468\n"}) {
        ASSERT_EQ(tool("reset card").code, 0);
        set("pin_each_signature = DS\n" + own);
        ASSERT_EQ(with_pin("request signature").code, 1);
        outcome = with_pin("install c --request r --backup b" + std::to_string(own.size()));
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(signature_pins(outcome), 1U) << outcome.calls;
        EXPECT_EQ(outcome.says("Signed with DS3"), own.empty()) << outcome.out;
        EXPECT_EQ(outcome.says("was compared with the new certificate"), !own.empty()) << outcome.out;
        outcome = with_pin("install c --request r");
        EXPECT_EQ(outcome.code, 2) << outcome.err;
        EXPECT_EQ(signature_pins(outcome), 0U) << "no try is spent";
    }
    ::unsetenv("ZVSIMCARD_KEYS");
}

TEST_F(RequestProgramTest, LosesNoAnswerAndReplacesNoFile) {
    make_card();
    const std::string slow = "C_GenerateKeyPair:1:delay:500000", pin = " --pin-file " + pin_file().string();
    Outcome outcome = shell("mkdir stick; " + once("C_GenerateKeyPair", "rm -r stick") +
                            command("request signature --out stick/r" + pin, "C_Sign:1:delay:500000"));
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(outcome.says("DS3 (keys without a certificate)")) << outcome.err;
    outcome = shell(once("C_DestroyObject", "echo mine >r") +
                    command("request signature --new-pair --out r" + pin, slow));
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(simcard::read_file(file("r")), "mine\n");
    EXPECT_TRUE(outcome.says("Repeat the request without --new-pair: it will use the pair DS3"))
        << outcome.err;

    for (const char* target : {" >/dev/full", " >&-", " --json >/dev/full"}) {
        outcome = shell(command("request signature" + pin) + target);
        EXPECT_EQ(outcome.code, 1) << target;
        EXPECT_TRUE(outcome.says("Standard output") && outcome.says("Now on the card")) << outcome.err;
    }
    EXPECT_TRUE(zvrenew("--help >/dev/full").says("Standard output does not take"));
    EXPECT_EQ(shell(command("list" + pin) + " <&- 2>&-").code, 0);
    EXPECT_EQ(
        shell("{ " + command("request signature" + pin) + "; echo $? >code; } | true; exit $(cat code)").code,
        1)
        << "nobody reads";
    outcome = shell("(" + command("request signature" + pin) + " 2>&1)");
    EXPECT_FALSE(zvhost::modulus_of_request(outcome.out.substr(outcome.out.rfind(".log\n") + 5)).empty());

    ASSERT_EQ(with_pin("request signature --out done").code, 0);
    outcome = with_pin("request signature --out done");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.count("C_Sign"), 0U) << "the pair's request is there";
    ASSERT_EQ(with_pin("request signature --new-pair --out other").code, 0);
    EXPECT_EQ(with_pin("request signature --out done").code, 2) << "it is of an older pair";
    for (const auto& entry : std::filesystem::directory_iterator(work()))
        EXPECT_NE(entry.path().filename().string().front(), '.') << "a draft was left";
}

TEST_F(RequestProgramTest, WorksOnACardAlone) {
    make_card();
    ASSERT_EQ(with_pin("request signature --out r").code, 0);
    ASSERT_EQ(tool("issue r --out certificate").code, 0);
    const std::string pin = " --pin-file " + pin_file().string(),
                      busy = "until grep -sq C_Destroy " + trace().string() + "; do sleep 0.02; done";
    for (const char* second : {"request authentication --force", "install certificate --remove-old"}) {
        const Outcome outcome = shell(
            "({ " +
            command("request signature --new-pair --out other" + pin, "C_GenerateKeyPair:1:delay:3000000") +
            " 2>first & }; timeout 20 sh -c '" + busy + "'; " + command(second + pin) +
            "; code=$?; wait; rm other; exit $code)");
        EXPECT_EQ(outcome.code, 2) << second << outcome.err;
        EXPECT_TRUE(outcome.says("Another program (process ")) << outcome.err;
        EXPECT_EQ(outcome.count("C_GenerateKeyPair"), 1U);
    }
    const Outcome outcome = shell(once("C_Login", "rm /tmp/zvrenew-card-*") +
                                  command("request signature" + pin, "C_FindObjectsInit:1:delay:500000"));
    EXPECT_EQ(outcome.code, 2) << "another could have come in";
    EXPECT_FALSE(outcome.changed_card());
}

TEST_F(RequestProgramTest, FindsWhatIsInTheLibrarysWayBeforeThePin) {
    make_card();
    std::filesystem::create_directory("/tmp/szP7MName");
    Outcome outcome = with_pin("request signature --out r");
    EXPECT_EQ(outcome.code, 2);
    EXPECT_TRUE(outcome.says("/tmp/szP7MName is in the way: a folder of ")) << outcome.err;
    EXPECT_EQ(outcome.calls, "");
    std::filesystem::remove("/tmp/szP7MName");
    if (::geteuid() != 0) return;
    outcome =
        shell("touch /tmp/tmpReqFile; setpriv --reuid=65534 --clear-groups " + command("request signature"));
    EXPECT_EQ(outcome.code, 2);
    EXPECT_TRUE(outcome.says("/tmp/tmpReqFile is in the way: a file of ")) << outcome.err;
    EXPECT_EQ(with_pin("request signature --out r").code, 0) << "one's own leftovers do no harm";
}

TEST_F(RequestProgramTest, RefusesAnIdentifierOfTwoKeys) {
    make_card();
    ASSERT_EQ(with_pin("request signature --out r").code, 0);
    ASSERT_EQ(tool("issue r --out c").code, 0);
    const std::string other = other_program("--id 445333 ");
    ASSERT_EQ(shell(other + "--keypairgen --key-type rsa:2048").code, 0);
    for (const char* command : {"request signature", "request signature --new-pair", "install c"}) {
        const Outcome outcome = with_pin(command);
        EXPECT_EQ(outcome.code, 2) << command;
        EXPECT_TRUE(outcome.says("several private keys DS3")) << outcome.err;
    }
    ASSERT_EQ(
        shell(other + "--delete-object --type privkey && " + other + "--delete-object --type pubkey").code,
        0);
    EXPECT_EQ(with_pin("request signature").code, 0);
}

// A person who thinks that the program hangs presses Ctrl-C.
TEST_F(RequestProgramTest, FinishesWhatItBeganOnTheCardWhenInterrupted) {
    make_card();
    ASSERT_EQ(with_pin("request signature --out r").code, 0);
    const std::string request =
        command("request signature --new-pair --out r --pin-file " + pin_file().string(),
                "C_GenerateKeyPair:1:delay:1000000");
    for (const std::string signal : {"INT", "QUIT"}) {
        const Outcome outcome =
            shell("rm -f r; " + once("C_DestroyObject", "kill -s " + signal + " $$") + "exec " + request);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_FALSE(key_of("r").empty());
    }
}

TEST_F(RequestProgramTest, RefusesAnIdentifierThatIsPartOfALiveOne) {
    make_card_with({"DS0", "DS31"});
    const Outcome outcome = with_pin("request signature --certificate DS0 --out r");
    EXPECT_EQ(outcome.code, 2) << outcome.err;
    EXPECT_TRUE(outcome.says("DS3 is part of DS31")) << outcome.err;
    EXPECT_FALSE(outcome.changed_card());
}

} // namespace
