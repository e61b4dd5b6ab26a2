// A watch on a real PC/SC service.
#include "host/reader_watch.h"
#include "tests/pcsc/needs_readers.h"

#include <thread>

namespace {

constexpr std::chrono::minutes LONG{10};
constexpr const char* ATR = "3BFF1800008131FE45006B04050100012101434E5310318059";

void settle(zvhost::ReaderWatch& watch) {
    while (watch.changed())
        continue;
}

// Whether the watch sees a change without having to look for it.
template <class Work> bool is_told_of(zvhost::ReaderWatch& watch, const Work& work) {
    std::thread watching([&] {
        do
            watch.wait(LONG);
        while (!watch.changed());
    });
    work(); // here: a card ends with the thread that put it in
    watching.join();
    settle(watch);
    return true;
}

} // namespace

TEST(PcscWatch, IsToldOfReadersAndCards) {
    ZVTEST_NEEDS_READERS();
    ::setenv("ZVCRYPT_CONF", "/dev/null", 1);
    simcard::VirtualReaders pcsc;
    zvhost::ReaderWatch watch;
    EXPECT_TRUE(watch.changed());
    EXPECT_FALSE(watch.changed());
    pcsc.start();
    watch.wait(LONG); // which is over at once: it came before
    EXPECT_TRUE(watch.changed());
    settle(watch);
    EXPECT_TRUE(is_told_of(watch, [&] { pcsc.insert(0, {"--atr", ATR}); }));
    EXPECT_TRUE(is_told_of(watch, [&] { pcsc.pull(0); }));
    pcsc.insert(1, {"--atr", ATR});
    watch.wait(LONG);
    EXPECT_TRUE(watch.changed()) << "it came before";
    settle(watch);
    std::thread waiting([&] { watch.wait(LONG); });
    std::this_thread::sleep_for(std::chrono::milliseconds(100)); // it is likely to wait by then
    watch.wake();
    waiting.join();
    EXPECT_TRUE(is_told_of(watch, [&] { pcsc.stop(); }));
    pcsc.start();
    EXPECT_TRUE(watch.changed());
}
