#include "tests/cli/program.h"

namespace {

using zvtest::Outcome;
using zvtest::ProgramTest;

class RemoveProgramTest : public ProgramTest {
  protected:
    // Each command must be refused, with nothing done to the card.
    void expect_refused(const std::string& arguments) {
        const Outcome outcome = with_pin(arguments);
        EXPECT_EQ(outcome.code, 2) << arguments << outcome.err;
        EXPECT_FALSE(outcome.changed_card()) << arguments;
    }
};

TEST_F(RemoveProgramTest, DiscardsWhatWaitsAndNothingElse) {
    make_card(12);
    EXPECT_TRUE(with_pin("pending").says("No pair on the card waits"));
    ASSERT_EQ(with_pin("request signature --out one").code, 0);
    EXPECT_TRUE(with_pin("pending").says("zvrenew pending discard DS3   (no"));
    for (const char* refused : {"DS0", "AUTHCertificate0", "DS", "DS33", "CNS0", "''"})
        expect_refused("pending discard " + std::string(refused));
    expect_refused("remove DS3");

    // The card keeps the private key; the same command finishes it.
    const Outcome broken = with_pin("pending discard DS3", "C_DestroyObject:2:answer:0x30");
    EXPECT_EQ(broken.code, 1) << broken.out;
    EXPECT_TRUE(broken.says("DS3 (private key alone)")) << broken.err;
    EXPECT_EQ(with_pin("pending discard DS3").code, 0) << "as advised";
    EXPECT_EQ(json("list")["pending"].size(), 0U);
    EXPECT_EQ(with_pin("request signature --out two").code, 0) << "the identifier is free";
}

TEST_F(RemoveProgramTest, RemovesWhatWasReplaced) {
    make_card(12);
    ASSERT_EQ(with_pin("request signature --out one").code, 0);
    ASSERT_EQ(tool("issue one --out certificate").code, 0);
    ASSERT_EQ(with_pin("install certificate").code, 0);
    for (const char* refused : {"remove DS3", "remove AUTHCertificate0", "remove DS", "pending discard DS3",
                                "pending discard DS0", "remove CNS0"})
        expect_refused(refused);
    EXPECT_TRUE(with_pin("remove DS3").says("give --last"));

    const Outcome removed = with_pin("remove DS0 --backup old.pem --json");
    ASSERT_EQ(removed.code, 0) << removed.out;
    const auto answer = nlohmann::json::parse(removed.out);
    EXPECT_EQ(answer["removed"], nlohmann::json::array({"DS0"}));
    EXPECT_EQ(answer["on_card"].size(), 3U) << answer["on_card"] << "the authority's certificate stays";
    EXPECT_EQ(removed.count("C_DestroyObject"), 3U);
    EXPECT_EQ(shell("openssl x509 -in old.pem -noout").code, 0);
    EXPECT_EQ(with_pin("remove DS3 --last --dry-run").code, 0) << "as advised";
}

} // namespace
