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
    std::ofstream(file("conf")) << "[card simulated]\natr = 3B0201\nmodule = libzvsimcard.so\n";
    ::setenv("ZVCRYPT_CONF", file("conf").c_str(), 1);
    EXPECT_TRUE(zvrenew("readers").says("The readers cannot be listed: \"Il servizio PC/SC dei lettori"));
    pcsc.start();
    EXPECT_EQ(zvrenew("readers").out, "Desk Reader 00 00: no card\nDesk Reader 00 01: no card\n");
    pcsc.insert(0, {"--mute"});
    pcsc.insert(1, {"--atr", "3B0201"});
    EXPECT_EQ(zvrenew("readers").out,
              "Desk Reader 00 01: card 42 (\"card\"), module libzvsimcard.so\n"
              "Desk Reader 00 00: a card that does not answer (is it the right way round?)\n");
    EXPECT_EQ(with_pin("list").code, 0) << "of two cards the known one";
}

} // namespace zvtest
