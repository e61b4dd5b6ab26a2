#include "tests/cli/program.h"

namespace {

using zvtest::Outcome;
using zvtest::ProgramTest;

class ListProgramTest : public ProgramTest {};

TEST_F(ListProgramTest, MarksWhatIsDue) {
    make_card(12);
    const auto list = json("list");
    EXPECT_EQ(list["result"], "done");
    ASSERT_EQ(list["certificates"].size(), 2U);
    const auto& signature = list["certificates"][0];
    EXPECT_EQ(signature["kind"], "signature");
    EXPECT_EQ(signature["id"], "DS0");
    EXPECT_EQ(signature["due"], true);
    EXPECT_NEAR(signature["days_left"].get<int>(), 12, 1);
    EXPECT_EQ(list["certificates"][1]["kind"], "authentication");
    EXPECT_EQ(list["certificates"][1]["due"], false);
    EXPECT_EQ(list["next"]["signature"]["id"], "DS3");
    EXPECT_TRUE(list["pending"].empty());
    EXPECT_EQ(json("list --days 5")["certificates"][0]["due"], false);
    EXPECT_TRUE(with_pin("list").says("zvrenew request signature"));

    const Outcome outcome = zvrenew("readers --json");
    EXPECT_EQ(outcome.count("C_Login"), 0U);
    const auto readers = nlohmann::json::parse(outcome.out)["readers"];
    ASSERT_EQ(readers.size(), 1U);
    EXPECT_EQ(readers[0]["reader"], "Simulated Reader 0");
    EXPECT_EQ(readers[0]["card"], true);
}

TEST_F(ListProgramTest, ShowsIdentifiersThatAreNoText) {
    make_card_with({"DS0", "DS\xE8"});
    const Outcome shown = with_pin("list");
    EXPECT_EQ(shown.code, 0) << shown.err;
    EXPECT_TRUE(shown.says("DS?")) << shown.out;
    EXPECT_FALSE(shown.says("\xE8")) << shown.out;
    EXPECT_EQ(json("list")["certificates"][1]["id"], "DS\uFFFD");
}

TEST_F(ListProgramTest, AnswersThatNoIdentifierIsFree) {
    make_card_with({"DS0", "DS3", "DS4", "DS5"});
    const auto free = json("free-id");
    EXPECT_EQ(free["result"], "done");
    EXPECT_EQ(free["signature"]["none_free"], true);
    const Outcome outcome = with_pin("request signature --out r");
    EXPECT_EQ(outcome.code, 2) << outcome.err;
    EXPECT_TRUE(outcome.says("DS3, DS4 and DS5 are taken"));
    EXPECT_FALSE(outcome.changed_card());
    EXPECT_FALSE(std::filesystem::exists(file("r")));
    EXPECT_EQ(json("list --days 60")["advice"][0]["key"], "free-identifier");
    EXPECT_TRUE(with_pin("list --days 60").says("zvrenew remove ID"));
    ASSERT_EQ(with_pin("remove DS4").code, 0) << "as advised";
    EXPECT_TRUE(with_pin("request signature --force --out r").says("the new pair DS4"));
}

TEST_F(ListProgramTest, SaysInJsonToo) {
    make_card();
    for (const char* arguments : {"list --reader x", "request signature --subject /C=ITA"}) {
        const auto answer = json(arguments);
        EXPECT_EQ(answer["result"], "refused") << arguments;
        EXPECT_FALSE(answer["message"].get<std::string>().empty());
    }
    for (const char* arguments : {"", "lost", "list --days x", "install"}) {
        const auto answer = nlohmann::json::parse(zvrenew(std::string(arguments) + " --json").out);
        EXPECT_EQ(answer["result"], "refused") << arguments;
        EXPECT_EQ(answer["advice"][0]["key"], "help") << arguments;
    }
    EXPECT_EQ(nlohmann::json::parse(zvrenew("list --help --json").out)["result"], "done");
    EXPECT_EQ(json("request authentication")["result"], "nothing due");
    auto failed = nlohmann::json::parse(with_pin("list --json", "C_FindObjectsInit:1:answer:0x6").out);
    EXPECT_EQ(failed["result"], "failed");
    EXPECT_EQ(failed["serial"], json("list")["serial"]);
    EXPECT_EQ(failed["advice"][0]["key"], "quoted-program") << failed;
    EXPECT_TRUE(
        with_pin("list", "C_FindObjectsInit:1:answer:0x30").says("molvastra.ini, a file that this program"));
    EXPECT_EQ(zvrenew("readers").code, 0) << "what the advice says";
    EXPECT_EQ(failed["on_card"].size(), 3U) << "looked at again";
    EXPECT_EQ(with_pin("list", "C_GetAttributeValue:3+:answer:0x30").code, 1) << "not read is not absent";
}

TEST_F(ListProgramTest, TellsHowToRenewOneKindWhileAnotherWaits) {
    make_card();
    ASSERT_EQ(with_pin("request signature --out s").code, 0);
    const Outcome list = with_pin("list --days 1000");
    EXPECT_TRUE(list.says("zvrenew request authentication --out FILE --days 1000\n")) << list.out;
    EXPECT_FALSE(list.says("The signature certificate is due"));
    ASSERT_EQ(with_pin("request authentication --out a --days 1000").code, 0);
    for (const std::string name : {"a", "s"}) {
        ASSERT_EQ(tool("issue " + name + " --out " + name + ".pem").code, 0);
        EXPECT_EQ(with_pin("install " + name + ".pem").code, 0);
    }
}

TEST_F(ListProgramTest, SaysThatACardIsFullAndWhatHelps) {
    make_card();
    ASSERT_EQ(shell("sed -i 's/^capacity.*/capacity = 7/' $ZVSIMCARD_HOME/card/card.ini").code, 0);
    const auto answer = json("request signature --out r");
    EXPECT_EQ(answer["advice"][0]["key"], "make-room") << answer;
    EXPECT_TRUE(with_pin("request signature --out r").says("zvrenew remove ID"));
    ASSERT_EQ(with_pin("remove AUTHCertificate0 --last").code, 0) << "as advised";
    EXPECT_EQ(with_pin("request signature --out r").code, 0);
}

TEST_F(ListProgramTest, LooksForTheModuleWhereItIsTold) {
    make_card();
    Outcome outcome = with_pin("list --module-dir " + home().string());
    EXPECT_EQ(outcome.code, 2);
    EXPECT_TRUE(outcome.says("which is not in " + home().string())) << outcome.err;
    EXPECT_EQ(outcome.calls, "");
    const std::string folder = std::filesystem::path(ZVSIMCARD_MODULE).parent_path();
    EXPECT_EQ(with_pin("list --module-dir " + folder).code, 0);
    EXPECT_EQ(with_pin("list --module-dir " LOADED_ONCE).code, 0) << "it does not bear being loaded twice";
}

TEST_F(ListProgramTest, WritesTheLogBelowItsOwnHomeOrWorksWithoutOne) {
    make_card();
    ASSERT_EQ(with_pin("request signature").code, 0);
    EXPECT_EQ(std::filesystem::status(home() / ".trevallo").permissions(), std::filesystem::perms::owner_all);
    const std::string log = simcard::read_file(home() / ".trevallo" / "zvRenew.log");
    EXPECT_NE(log.find("rinnovo_Card_createCertRequestPRA"), std::string::npos);
    EXPECT_EQ(log.find(simcard::DEFAULT_PIN), std::string::npos);

    std::filesystem::remove_all(home() / ".trevallo");
    simcard::write_file(home() / ".trevallo", "", simcard::Access::owner_only);
    const Outcome outcome = with_pin("list");
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(outcome.says("There will be no log")) << outcome.err;
}

TEST_F(ListProgramTest, TakesWrongUsageForARefusal) {
    for (const char* arguments : {"", "request", "request everything", "list --pin 12345678"})
        EXPECT_EQ(zvrenew(arguments).code, 2) << arguments;
    EXPECT_EQ(zvrenew("--help").code, 0);
}

} // namespace
