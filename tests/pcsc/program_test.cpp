// `zvrenew readers` on a real PC/SC service.
#include "tests/cli/program.h"
#include "tests/pcsc/needs_readers.h"

namespace zvtest {
class PcscProgram : public ProgramTest {};

TEST_F(PcscProgram, ListsReadersAndCards) {
    ZVTEST_NEEDS_READERS();
    simcard::TestCards cards;
    simcard::VirtualReaders pcsc;
    cards.make({.reader = "Desk Reader 00 01", .serial = "42"});
    std::ofstream(file("conf")) << "";
    ::setenv("ZVCRYPT_CONF", file("conf").c_str(), 1);
    const Outcome alone = zvrenew("readers");
    EXPECT_TRUE(alone.says("The readers cannot be listed: \"Il servizio PC/SC dei lettori")) << alone.err;
    EXPECT_TRUE(alone.says("start the PC/SC service (Debian: apt install pcscd;")) << alone.err;
    pcsc.start();
    EXPECT_EQ(zvrenew("readers").out, "Desk Reader 00 00: no card\nDesk Reader 00 01: no card\n");
    pcsc.insert(0, {"--mute"});
    pcsc.insert(1, {"--atr", "3B0201"});
    EXPECT_TRUE(with_pin("list --reader 'Desk Reader 00 01'")
                    .says("  [card NAME]\n  atr = ATR\n  module = MODULE.so\n"));
    std::ofstream(file("conf")) << "  [card NAME]\n  atr = 3B0201\n  module = libzvsimcard.so\n";
    EXPECT_EQ(zvrenew("readers").out,
              "Desk Reader 00 01: card 42 (\"card\"), module libzvsimcard.so\n"
              "Desk Reader 00 00: a card that does not answer (is it the right way round?)\n");
    EXPECT_EQ(with_pin("list").code, 0) << "of two cards the known one";
}

TEST_F(PcscProgram, ExaminesServiceReadersAndCards) {
    ZVTEST_NEEDS_READERS();
    simcard::TestCards cards;
    simcard::VirtualReaders pcsc;
    cards.make({.reader = "Desk Reader 00 01", .serial = "42"});
    std::ofstream(file("conf")) << "[card mine]\natr = 3B0201\nmodule = libzvsimcard.so\n";
    ::setenv("ZVCRYPT_CONF", file("conf").c_str(), 1);
    const Outcome alone = zvrenew("doctor");
    EXPECT_EQ(alone.code, 1);
    EXPECT_TRUE(alone.says("WRONG    service: ")) << alone.out;
    pcsc.start();
    const Outcome none = zvrenew("doctor");
    EXPECT_TRUE(none.says("warning  card: There is no card in any reader.")) << none.out;
    pcsc.insert(1, {"--atr", "3B0201"});
    const Outcome one = zvrenew("doctor");
    EXPECT_TRUE(one.says("right    service: ")) << one.out;
    EXPECT_TRUE(one.says("[card mine] (line 1 of ")) << one.out;
    EXPECT_FALSE(one.says("WRONG    card")) << one.out;
    EXPECT_TRUE(one.says("The card in \"Desk Reader 00 01\" is 42")) << one.out;
    pcsc.insert(0, {"--mute"});
    const Outcome mute = zvrenew("doctor");
    EXPECT_EQ(mute.code, 1);
    EXPECT_TRUE(mute.says("WRONG    card: The card in \"Desk Reader 00 00\" does not answer")) << mute.out;
    EXPECT_EQ(one.count("C_Login") + mute.count("C_Login"), 0U);
}

} // namespace zvtest
