// A card in a PC/SC reader whose ATR leads to the simulated module.
#include "tests/flows/flow.h"
#include "tests/pcsc/needs_readers.h"
#include "zvCrypt.h"

namespace zvtest {

class PcscRenewal : public Flow {
  protected:
    PcscRenewal() : Flow(simcard::CardPlan{.reader = "Desk Reader 00 01", .serial = "9000111122223333"}) {
        std::ofstream(cards.path() / "zvcrypt.conf")
            << "[card simulated]\natr = " << card.atr << "\nmodule = libzvsimcard.so\n";
    }
};

TEST_F(PcscRenewal, ReadsRequestsAndStores) {
    ZVTEST_NEEDS_READERS();
    simcard::VirtualReaders pcsc;
    pcsc.start();
    EXPECT_EQ(read(PIN, nullptr).result, ZVC_ERR_NO_CARD);
    EXPECT_STREQ(szBuffErr, "Nessuna smart card nel lettore Desk Reader 00 00");
    pcsc.insert(1, {"--atr", card.atr});
    ASSERT_EQ(read(PIN, nullptr).result, 0) << szBuffErr;
    ASSERT_EQ(request(), 0) << szBuffErr;
    const std::string issued = issue();

    pcsc.pull(1);
    EXPECT_EQ(read(PIN, nullptr).result, ZVC_ERR_NO_CARD);
    pcsc.insert(1, {"--atr", card.atr});
    const Reading again = read(PIN, nullptr);
    ASSERT_EQ(again.result, 0) << szBuffErr;
    EXPECT_EQ(again.pending_pra, 1);
    ASSERT_EQ(save(issued, false), 0) << szBuffErr;
    EXPECT_TRUE(pair_works("DS3"));
    EXPECT_EQ(tries_left(), 3);
}

} // namespace zvtest
