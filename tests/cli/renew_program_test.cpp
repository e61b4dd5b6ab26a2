#include "tests/cli/program.h"

namespace {

using zvtest::Outcome;
using zvtest::ProgramTest;
using Json = nlohmann::json;

constexpr const char* BY_FILE = "--to request --from certificate ";
constexpr const char* BY_COMMAND =
    "--ca-command 'cat >r && " ZVSIMCARD_TOOL " issue r --out c && cat c && rm c' ";

class RenewProgramTest : public ProgramTest {
  protected:
    Outcome renew(const std::string& arguments, const std::string& rules = {}) {
        return with_pin("renew " + arguments, rules);
    }
    // Has the card say how many bytes it has.
    void leave_room(int bytes) {
        const std::string card = (card_folder() / "card.ini").string();
        ASSERT_EQ(shell("sed -i /memory_left/d " + card + " && echo memory_left = " + std::to_string(bytes) +
                        " >>" + card)
                      .code,
                  0);
    }
    // What there is under each identifier.
    Json held() {
        Json ids = Json::array();
        const Json list = json("list");
        for (const Json& one : list["certificates"])
            ids.push_back(one["id"]);
        return ids;
    }
};

TEST_F(RenewProgramTest, IsOneCommandWithAnAuthorityThatIsAsked) {
    make_card(12);
    const Outcome done = renew(std::string(BY_COMMAND) + "signature --remove-old --json");
    ASSERT_EQ(done.code, 0) << done.out << done.err;
    const Json answer = Json::parse(done.out);
    EXPECT_EQ(answer["removed"], "DS0");
    EXPECT_EQ(answer["verified"], true);
    EXPECT_EQ(held(), Json::array({"DS3", "AUTHCertificate0"})) << "the authority's stays";
    EXPECT_FALSE(zvtest::fs::exists(file("request-signature.b64"))) << "it is nobody's any more";
    EXPECT_TRUE(zvtest::fs::exists(file(answer["backup"])));
    EXPECT_EQ(renew(std::string(BY_COMMAND) + "signature").code, 3);
    EXPECT_EQ(renew("authentication --force --ca-command 'exit 75'").code, 12);
    const Outcome failed = renew("authentication --ca-command 'exit 4'");
    EXPECT_EQ(failed.code, 1);
    EXPECT_FALSE(failed.changed_card());
    EXPECT_EQ(renew(std::string(BY_COMMAND) + "authentication").code, 0) << "as advised";
    EXPECT_TRUE(renew(std::string(BY_COMMAND) + "authentication --remove-old")
                    .says("zvrenew remove AUTHCertificate0"))
        << "what goes is not known any more";
    EXPECT_EQ(renew("signature").code, 2) << "nobody to ask";
}

TEST_F(RenewProgramTest, KeepsAnAnswerThatIsNone) {
    make_card(12);
    const Outcome odd = renew("signature --ca-command 'cat; echo'");
    EXPECT_EQ(odd.code, 1) << "the card has new keys: " << odd.err;
    EXPECT_TRUE(odd.says("DS3 (keys without a certificate)")) << odd.err;
    EXPECT_TRUE(odd.says("is in certificate-signature.pem")) << odd.err;
    EXPECT_EQ(renew(std::string(BY_COMMAND) + "signature").code, 2) << "it is still there";
    ASSERT_EQ(shell("mv certificate-signature.pem away").code, 0);
    EXPECT_EQ(renew(std::string(BY_COMMAND) + "signature").code, 0) << "as advised";
}

TEST_F(RenewProgramTest, GoesOnWhereTheCertificateIsWaitedFor) {
    make_card(12);
    const std::string command = std::string("signature --remove-old ") + BY_FILE;
    const Outcome waits = renew(command);
    EXPECT_EQ(waits.code, 12) << waits.err;
    EXPECT_TRUE(waits.says("run the same command again"));
    EXPECT_EQ(renew(command).code, 12) << "it is still waited for";
    EXPECT_FALSE(renew(command).changed_card());
    ASSERT_EQ(tool("issue request --out certificate").code, 0);
    const Json plan = Json::parse(renew(command + "--dry-run --json").out)["plan"];
    ASSERT_EQ(plan["changes"].size(), 1U) << plan;
    EXPECT_EQ(plan["changes"][0]["id"], "DS3");

    // Stored, but the old one could not be removed.
    const Outcome broken = renew(command, "C_DestroyObject:1:answer:0x30");
    EXPECT_EQ(broken.code, 1) << broken.out;
    EXPECT_EQ(held(), Json::array({"DS0", "DS3", "AUTHCertificate0"}));
    ASSERT_EQ(shell("mv certificate away").code, 0);
    const Outcome done = renew(command);
    EXPECT_EQ(done.code, 0) << "the certificate is wanted no more: " << done.err;
    EXPECT_EQ(held(), Json::array({"DS3", "AUTHCertificate0"}));
    ASSERT_EQ(shell("mv away certificate").code, 0);
    EXPECT_EQ(renew(command).code, 0) << "it is done";
}

TEST_F(RenewProgramTest, RemovesTheOldCertificateFirstWhereThereIsNoRoomForBoth) {
    make_card(12);
    const std::string command = std::string("signature --remove-old ") + BY_FILE;
    ASSERT_EQ(renew(command).code, 12);
    ASSERT_EQ(tool("issue request --out certificate").code, 0);
    leave_room(100);
    const Outcome dry = renew(command + "--dry-run");
    EXPECT_TRUE(dry.says("- certificate DS0")) << dry.out;
    EXPECT_TRUE(dry.says("no room for both certificates: DS0 is removed before")) << dry.out;

    const Outcome broken = renew(command, "C_CreateObject:1:answer:0x30");
    EXPECT_EQ(broken.code, 1) << broken.out;
    EXPECT_TRUE(broken.says("DS0, is back on the card")) << broken.err;
    EXPECT_EQ(held(), Json::array({"DS0", "AUTHCertificate0"}));
    // It ends after the removal; the backup and the request say the rest.
    EXPECT_NE(renew(command, "C_CreateObject:1:kill-before").code, 1);
    EXPECT_EQ(held(), Json::array({"AUTHCertificate0"}));
    ASSERT_EQ(shell("rm -r " + home().string() + "/.local").code, 0) << "as on another computer";
    const Outcome done = renew(command);
    ASSERT_EQ(done.code, 0) << done.out << done.err;
    EXPECT_EQ(held(), Json::array({"DS3", "AUTHCertificate0"}));
    EXPECT_FALSE(with_pin("list").says("DS0")) << "nor its keys: " << done.out;
    EXPECT_EQ(shell("cat DS0-*.pem | openssl x509 -noout").code, 0) << "its backup";
}

TEST_F(RenewProgramTest, SaysWhatMakesRoom) {
    make_card(12);
    const std::string command = std::string("signature ") + BY_FILE;
    ASSERT_EQ(renew(command).code, 12);
    ASSERT_EQ(tool("issue request --out certificate").code, 0);
    leave_room(100);
    const Outcome full = renew(command);
    EXPECT_EQ(full.code, 1) << full.out;
    EXPECT_TRUE(full.says("run the same command again with --remove-old")) << full.err;
    const Json done = json("renew " + command + "--remove-old");
    EXPECT_EQ(done["removed"], "DS0") << "as advised: " << done;
    EXPECT_EQ(done["advice"], Json::array());
    EXPECT_EQ(shell("openssl x509 -noout -in " + done["backup"].get<std::string>()).code, 0);

    leave_room(20000);
    ASSERT_EQ(renew("authentication --force --to r --from c").code, 12);
    ASSERT_EQ(tool("issue r --out c").code, 0);
    const Outcome unsaid =
        renew("authentication --to r --from c --remove-old", "C_CreateObject:1:answer:0x31");
    EXPECT_TRUE(unsaid.says("zvrenew install c --remove-old")) << unsaid.err;
    EXPECT_EQ(with_pin("install c --remove-old").code, 0) << "as advised";
    EXPECT_EQ(held(), Json::array({"DS3", "AUTHCertificate3"}));
}

TEST_F(RenewProgramTest, KeepsWhatNothingSaysToGo) {
    make_card_with({"DS0", "DS1"});
    ASSERT_EQ(renew(std::string("signature --force ") + BY_FILE).code, 12);
    ASSERT_EQ(tool("issue request --out certificate").code, 0);
    ASSERT_EQ(shell("rm -r " + home().string() + "/.local; mv request elsewhere").code, 0);
    const Outcome planned = renew(std::string("signature --remove-old --dry-run ") + BY_FILE);
    EXPECT_FALSE(planned.says("the old one and its keys are removed")) << planned.out;
    const Outcome done = renew(std::string("signature --remove-old ") + BY_FILE);
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_EQ(done.count("C_DestroyObject"), 0U);
    EXPECT_TRUE(done.says("zvrenew remove DS0")) << done.out;
    EXPECT_EQ(with_pin("remove DS0").code, 0) << "as advised";
}

TEST_F(RenewProgramTest, RemovesNoOtherInThePlaceOfOneThatIsGone) {
    make_card_with({"DS0", "DS1"});
    const std::string command = std::string("signature --force --certificate DS0 --remove-old ") + BY_FILE;
    ASSERT_EQ(renew(command).code, 12);
    ASSERT_EQ(tool("issue request --out certificate").code, 0);
    EXPECT_NE(renew(command, "C_DestroyObject:3:kill-after").code, 0);
    EXPECT_EQ(held(), Json::array({"DS1", "DS3"}));
    const Outcome done = renew(command);
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_EQ(held(), Json::array({"DS1", "DS3"}));
}

TEST_F(RenewProgramTest, LeavesAServicesCardWithACertificate) {
    make_card(12, "cns");
    const std::string command = std::string("services --remove-old ") + BY_FILE;
    ASSERT_EQ(renew(command).code, 12);
    ASSERT_EQ(tool("issue request --out certificate").code, 0);
    const Json before = json("list")["certificates"];
    const Outcome broken = renew(command, "C_CreateObject:1:answer:0x31");
    EXPECT_EQ(broken.code, 1) << broken.out;
    EXPECT_TRUE(broken.says("is back on the card")) << broken.err;
    Json after = json("list")["certificates"];
    EXPECT_EQ(after[0]["serial"], before[0]["serial"]);
    EXPECT_EQ(renew(command).code, 0);
    EXPECT_NE(json("list")["certificates"][0]["serial"], before[0]["serial"]);
    EXPECT_FALSE(json("list")["services_pending"]);
}

} // namespace
