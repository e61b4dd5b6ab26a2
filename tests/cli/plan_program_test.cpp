#include "tests/cli/program.h"

#include <map>

namespace {

using zvtest::Outcome;
using zvtest::ProgramTest;
using Json = nlohmann::json;

class PlanProgramTest : public ProgramTest {
  protected:
    // How many objects of each class and identifier the card holds, by another program.
    std::map<std::string, int> held() {
        std::map<std::string, int> found;
        std::istringstream lines(shell(other_program("-O")).out);
        std::string what;
        for (std::string line; std::getline(lines, line);) {
            const std::size_t mark = line.find(':');
            if (!line.starts_with(' ')) {
                what = line.substr(0, line.find(' '));
                if (what == "Data") ++found["data"];
            } else if (line.find(" ID:") != std::string::npos) {
                ++found[what + " " + text_of(line.substr(line.find_first_not_of(' ', mark + 1)))];
            }
        }
        return found;
    }
    static std::string text_of(const std::string& hex) {
        std::string text;
        for (std::size_t at = 0; at + 1 < hex.size() && std::isxdigit(hex[at]) != 0; at += 2)
            text += static_cast<char>(std::stoi(hex.substr(at, 2), nullptr, 16));
        return text;
    }
    static void apply(const Json& plan, std::map<std::string, int>& objects) {
        static const std::map<std::string, std::string> WORDS{
            {"certificate", "Certificate "}, {"public key", "Public "}, {"private key", "Private "}};
        for (const Json& change : plan["changes"]) {
            const std::string what = change["what"];
            const std::string name = what == "data" ? what : WORDS.at(what) + change["id"].get<std::string>();
            objects[name] += change["action"] == "create" ? 1 : change["action"] == "remove" ? -1 : 0;
        }
        std::erase_if(objects, [](const auto& one) { return one.second == 0; });
    }
    // Plans, sees that nothing happened, does it, and compares with what the plan said.
    Json planned(const std::string& command) {
        std::map<std::string, int> objects = held();
        const Outcome dry = with_pin(command + " --dry-run --json");
        EXPECT_FALSE(dry.says("is generating")) << dry.out;
        EXPECT_EQ(dry.code, 0) << dry.out;
        EXPECT_FALSE(dry.changed_card());
        Json plan = Json::parse(dry.out)["plan"];
        EXPECT_EQ(held(), objects) << "a dry run changes nothing";
        const Outcome done = with_pin(command + " --apply-if " + plan["fingerprint"].get<std::string>());
        EXPECT_EQ(done.code, 0) << done.err;
        EXPECT_EQ(done.count("C_Login"), dry.count("C_Login") + plan["logins"].get<std::size_t>()) << command;
        apply(plan, objects);
        EXPECT_EQ(held(), objects) << command << plan.dump(1);
        return plan;
    }
};

TEST_F(PlanProgramTest, IsWhatHappens) {
    make_card(12);
    planned("request signature --out one");
    EXPECT_TRUE(planned("request signature --out two")["changes"].empty()) << "the same pair again";
    const Json discarded = planned("request signature --new-pair --out three");
    EXPECT_EQ(discarded["changes"].size(), 4U);
    ASSERT_EQ(tool("issue three --out certificate").code, 0);
    const Json removed = planned("install certificate --remove-old");
    EXPECT_EQ(removed["changes"].size(), 5U)
        << removed << "three of the old one, the authority's, the new one";
    planned("request authentication --force --out four");
    ASSERT_EQ(tool("issue four --out other").code, 0);
    EXPECT_EQ(planned("install other")["changes"].size(), 1U);
}

TEST_F(PlanProgramTest, IsWhatHappensToAServicesCard) {
    make_card(12, "cns");
    planned("request services --out one");
    ASSERT_EQ(tool("issue one --out certificate").code, 0);
    EXPECT_EQ(planned("install certificate --remove-old")["changes"].size(), 3U) << "old, new, mark";
}

TEST_F(PlanProgramTest, IsRefusedWhenTheCardHasChanged) {
    make_card(12);
    const std::string print = json("request signature --out one --dry-run")["plan"]["fingerprint"];
    EXPECT_FALSE(zvtest::fs::exists(file("one")));
    ASSERT_EQ(with_pin("request authentication --force --out other").code, 0);
    const Outcome refused = with_pin("request signature --out one --apply-if " + print);
    EXPECT_EQ(refused.code, 2);
    EXPECT_FALSE(refused.changed_card());
    EXPECT_TRUE(refused.says("--dry-run")) << refused.err;
    EXPECT_EQ(with_pin("request signature --out one --dry-run").code, 0) << "as advised";
    EXPECT_TRUE(with_pin("request signature --out one --dry-run").says("\n  + private key DS3, 2048 bits:"));
}

} // namespace
