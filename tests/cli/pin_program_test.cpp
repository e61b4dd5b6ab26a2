// No PIN try is lost on the way to the card.
#include "tests/cli/program.h"

namespace {

using zvtest::Outcome;
using zvtest::ProgramTest;

class PinProgramTest : public ProgramTest {};

TEST_F(PinProgramTest, RefusesAPinOfABadFormBeforeAnyCall) {
    make_card();
    for (const char* pin : {"", "12345678 ", "12345678901234567890123456789012"}) {
        give_pin(pin);
        for (const char* command : {"list", "free-id", "request signature"}) {
            const Outcome outcome = with_pin(command);
            EXPECT_EQ(outcome.code, 2) << command << outcome.err;
            EXPECT_EQ(outcome.calls, "") << command;
        }
    }
    EXPECT_EQ(zvrenew("list --pin-file " + file("none").string()).code, 2);
}

TEST_F(PinProgramTest, AWrongPinCostsOneTryAndTheLastIsNotTakenNorALockedOne) {
    make_card();
    give_pin("99999999");
    Outcome outcome = with_pin("request signature");
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.count("C_Login"), 1U);
    EXPECT_TRUE(outcome.says("The PIN is wrong")) << outcome.err;
    EXPECT_TRUE(outcome.says("fewer tries")) << outcome.err;
    EXPECT_TRUE(outcome.says("Now on the card: what was on it before: nothing was changed"));
    const auto second = json("list");
    EXPECT_EQ(second["pin"], "last try") << "the second of three";
    EXPECT_EQ(second["reader"], "Simulated Reader 0");

    outcome = with_pin("list");
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.count("C_Login"), 0U);
    EXPECT_TRUE(outcome.says("--final-try"));
    EXPECT_TRUE(zvrenew("readers").says("one try is left"));

    give_pin(simcard::DEFAULT_PIN);
    EXPECT_EQ(with_pin("list --final-try").code, 0);
    EXPECT_FALSE(zvrenew("readers").says("tries"));

    give_pin("99999999");
    for (const char* command : {"list", "list", "list --final-try"})
        EXPECT_EQ((outcome = with_pin(command)).code, 1);
    EXPECT_TRUE(outcome.says("PUK")) << outcome.err;
    outcome = with_pin("list --final-try");
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.count("C_Login"), 0U);
    EXPECT_TRUE(outcome.says("locked"));
}

TEST_F(PinProgramTest, AsksNothingOfACardItCannotBeSureOf) {
    make_card();
    ASSERT_EQ(
        tool("create --name two --reader Simulated --keys " ZV_TEST_KEYS " --config " + file("conf").string())
            .code,
        0);
    ::setenv("ZVCRYPT_CONF", file("conf").c_str(), 1);
    Outcome outcome = with_pin("list");
    EXPECT_EQ(outcome.code, 2) << outcome.err;
    EXPECT_EQ(outcome.calls, "") << "two cards and no reader named";
    outcome = with_pin("list --reader 'Simulated Reader 0'");
    EXPECT_EQ(outcome.code, 2) << outcome.err;
    EXPECT_EQ(outcome.count("C_Login"), 0U) << "the name of the other reader is part of this one's";
    EXPECT_EQ(with_pin("list --reader Simulated").code, 0);
    EXPECT_EQ(with_pin("list --reader Elsewhere").code, 2);

    ASSERT_EQ(shell("sed -i 's/^reader = .*/reader = Simulated Reader 0/' $ZVSIMCARD_HOME/two/card.ini && "
                    "sed -i 's/^name = Simulated$/name = Simulated Reader 0 B/' conf")
                  .code,
              0);
    outcome = with_pin("list --reader 'Simulated Reader 0 B'");
    EXPECT_EQ(outcome.code, 2) << outcome.err;
    EXPECT_EQ(outcome.count("C_Login"), 0U) << "the module cuts the names, so that they are one";
}

} // namespace
