#include "tests/cli/program.h"

namespace {

using zvtest::Outcome;
using zvtest::ProgramTest;

class StatusProgramTest : public ProgramTest {
  protected:
    // Asks for the status, which must not log in nor change the card.
    Outcome status(const std::string& arguments = {}) {
        const Outcome outcome = zvrenew("status " + arguments);
        EXPECT_EQ(outcome.count("C_Login"), 0U) << arguments;
        EXPECT_FALSE(outcome.changed_card()) << arguments;
        return outcome;
    }
    nlohmann::json status_json() { return nlohmann::json::parse(status("--json").out); }
    // A day may end between two of them.
    static nlohmann::json without_days_left(nlohmann::json certificates) {
        for (auto& certificate : certificates)
            EXPECT_EQ(certificate.erase("days_left"), 1U);
        return certificates;
    }
    void make_other_card(int days, const char* profile = "signature") {
        ASSERT_EQ(tool("remove card").code, 0);
        make_card(days, profile);
    }
    void forget_card() const { std::filesystem::remove_all(home() / ".local"); }
    void remove_certificate(const std::string& hex) {
        ASSERT_EQ(shell(other_program("--delete-object --type cert --id " + hex)).code, 0);
    }
};

TEST_F(StatusProgramTest, TellsByItsCodeWhereARenewalStands) {
    make_card(12);
    EXPECT_EQ(status("--days 5").code, 0);
    const Outcome due = status();
    EXPECT_EQ(due.code, 10) << due.err;
    EXPECT_TRUE(due.says("zvrenew request signature --out FILE\n")) << due.out;
    EXPECT_EQ(without_days_left(status_json()["certificates"]),
              without_days_left(json("list")["certificates"]))
        << "the authority's is in neither";

    ASSERT_EQ(with_pin("request signature --out s").code, 0);
    const auto waiting = status_json();
    EXPECT_EQ(waiting["result"], "request under way");
    EXPECT_EQ(waiting["pending"], json("list")["pending"]);
    EXPECT_EQ(waiting["advice"][0]["key"], "install");
    ASSERT_EQ(tool("issue s --out c").code, 0);
    ASSERT_EQ(with_pin("install c").code, 0);
    EXPECT_EQ(status().code, 0) << "the one that is due was replaced";
    EXPECT_TRUE(status("--days 2000").says("zvrenew request authentication --out FILE --days 2000\n"));
    EXPECT_EQ(with_pin("request authentication --out FILE --days 2000").code, 0) << "as advised";

    make_other_card(-3);
    EXPECT_EQ(status().code, 11);
    ASSERT_EQ(with_pin("request signature --out t").code, 0);
    EXPECT_EQ(status_json()["result"], "expired") << "whatever else holds";
}

TEST_F(StatusProgramTest, SaysWhatDoesNotShowWithoutThePin) {
    make_card(12, "cns");
    ASSERT_EQ(with_pin("request services --out s").code, 0);
    forget_card(); // as a computer that made no request
    const Outcome services = status();
    EXPECT_EQ(services.code, 10);
    EXPECT_TRUE(services.says("does not show without the PIN. See it with:  zvrenew list")) << services.out;
    EXPECT_TRUE(status_json()["services_pending"].is_null());
    EXPECT_TRUE(with_pin("list").says("request under way"));

    make_other_card(12);
    remove_certificate("445330");
    const Outcome one = status();
    EXPECT_EQ(one.code, 0) << one.err;
    EXPECT_TRUE(one.says("(keys that show no certificate: DS0)")) << one.out;
    remove_certificate("41555448436572746966696361746530");
    EXPECT_EQ(status().code, 1) << "keys are not nothing";
    EXPECT_EQ(status_json()["serial"], json("list")["serial"]);

    ASSERT_EQ(tool("remove card").code, 0);
    make_card_with({});
    EXPECT_EQ(status().code, 13) << "the authority's certificate is nobody's";
    EXPECT_EQ(with_pin("list").code, 0) << "as advised";
}

TEST_F(StatusProgramTest, EndsAsOtherCommandsWhenItCannotAsk) {
    make_card();
    EXPECT_EQ(status("--reader none").code, 2);
    EXPECT_EQ(status("--pin-file x").code, 2) << "it takes no PIN";
    EXPECT_EQ(zvrenew("status", "C_FindObjectsInit:1:answer:0x30").code, 1);
    EXPECT_EQ(zvrenew("status", "C_GetAttributeValue:3+:answer:0x30").code, 1) << "not read is not absent";
    ASSERT_EQ(tool("eject card").code, 0);
    EXPECT_EQ(status().code, with_pin("list").code);
    EXPECT_EQ(status().code, 1) << "the module shows no card";
}

} // namespace
