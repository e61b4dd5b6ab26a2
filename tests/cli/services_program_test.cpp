#include "tests/cli/program.h"

namespace {

using zvtest::Outcome;
using zvtest::ProgramTest;

class ServicesProgramTest : public ProgramTest {
  protected:
    // A card whose request is under way, the request in "request" and its certificate in "certificate".
    void prepare() {
        make_card(12, "cns");
        request = with_pin("request services --out request");
        ASSERT_EQ(request.code, 0) << request.err;
        ASSERT_EQ(tool("issue request --out certificate").code, 0);
    }
    Outcome request;
};

TEST_F(ServicesProgramTest, RenewsTheCardsOwnCertificate) {
    prepare();
    EXPECT_EQ(request.count("C_GenerateKeyPair"), 0U);
    EXPECT_TRUE(request.says("=, SN=Collaudo, GN=Ada\n")) << "what follows the common name: " << request.out;
    EXPECT_TRUE(request.says("--request request --remove-old"));
    const auto before = json("list");
    EXPECT_EQ(before["services_pending"], true);
    EXPECT_TRUE(with_pin("list").says("DUE, request under way"));

    const auto result = json("install certificate --request request --remove-old --backup old.pem");
    EXPECT_EQ(result["result"], "done") << result;
    EXPECT_EQ(result["on_card"], zvtest::whole({"CNS0"}));
    const auto after = json("list");
    ASSERT_EQ(after["certificates"].size(), 1U);
    const auto& renewed = after["certificates"][0];
    EXPECT_EQ(renewed["subject"], before["certificates"][0]["subject"]);
    EXPECT_EQ(renewed["key_identifier"], before["certificates"][0]["key_identifier"]) << "the same keys";
    EXPECT_NE(renewed["serial"], before["certificates"][0]["serial"]);
    EXPECT_EQ(after["services_pending"], false);
    EXPECT_EQ(with_pin("install old.pem --remove-old --accept ends-earlier").code, 0) << "it can be put back";
}

TEST_F(ServicesProgramTest, FinishesOnceTheOldOneIsGone) {
    prepare();
    const Outcome full = with_pin("install certificate --remove-old",
                                  "C_CreateObject:1:answer:0x31;C_CreateObject:2:answer:0x31");
    EXPECT_EQ(full.code, 1);
    EXPECT_TRUE(full.says("Now on the card: CNS0 (keys without a certificate)")) << full.err;
    EXPECT_TRUE(full.says("run the same command again")) << full.err;
    EXPECT_EQ(with_pin("install certificate --remove-old").code, 0);
    EXPECT_EQ(json("list")["certificates"].size(), 1U);
}

TEST_F(ServicesProgramTest, TellsTheTwoThatAreKeptApart) {
    prepare();
    const Outcome refused = with_pin("install certificate --backup old.pem", "C_CreateObject:1:answer:0x5");
    EXPECT_TRUE(refused.says("needs --remove-old")) << "some take only one: " << refused.err;
    ASSERT_EQ(shell("cat old.pem certificate >both").code, 0);
    const Outcome kept = with_pin("install both --backup old.pem");
    EXPECT_EQ(kept.code, 0) << kept.err;
    EXPECT_TRUE(kept.says("still on the card, under the same identifier CNS0")) << kept.out;
    const auto list = json("list");
    ASSERT_EQ(list["certificates"].size(), 2U);
    EXPECT_EQ(list["certificates"][0]["replaced"], true);
    EXPECT_EQ(list["certificates"][1]["replaced"], false);
    EXPECT_EQ(json("install both")["verified"], true) << "it is there already";
    ASSERT_EQ(with_pin("request services --force --out third").code, 0);
    ASSERT_EQ(tool("issue third --out last").code, 0);
    EXPECT_TRUE(with_pin("install last --remove-old").says("All have the identifier CNS0: install without"));
    EXPECT_EQ(with_pin("install last").code, 0);
}

TEST_F(ServicesProgramTest, RefusesWhatItsRequestCannotDo) {
    make_card(12, "cns");
    for (const char* options : {"--new-pair", "--subject /CN=Ada/title=Dott"}) {
        const Outcome outcome = with_pin(std::string("request services ") + options);
        EXPECT_EQ(outcome.code, 2) << outcome.err;
        EXPECT_EQ(outcome.calls, "") << options;
    }
    EXPECT_TRUE(
        with_pin("request services", "C_Sign:1:absurd:brief").says("keys are of no use for a request"));
    EXPECT_EQ(with_pin("request services").code, 0) << "as advised";
}

} // namespace
