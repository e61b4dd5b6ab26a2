#include "host/front.h"
#include "host/reader_watch.h"
#include "tests/simcard_tool/test_cards.h"
#include "tests/support/module.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

namespace {

constexpr std::chrono::minutes LONG{10};

TEST(ReaderWatchTest, SeesASoftwareReadersCardComeAndGo) {
    simcard::TestCards cards;
    cards.make();
    cards.configure();
    zvtest::Module module;
    zvhost::ReaderWatch watch(std::filesystem::path(ZVSIMCARD_MODULE).parent_path());
    EXPECT_TRUE(watch.changed()) << "nothing was known before";
    EXPECT_FALSE(watch.changed());
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(module.take_out(), 0);
        EXPECT_TRUE(watch.changed());
        EXPECT_FALSE(watch.changed());
        EXPECT_EQ(module.put_back(), 0);
        EXPECT_TRUE(watch.changed());
    }
    EXPECT_EQ(module.calls("C_Login"), 0U);
    cards.make({.name = "other", .reader = "Other Reader"});
    cards.configure();
    EXPECT_TRUE(watch.changed());
    zvhost::end_modules();
}

TEST(ReaderWatchTest, IsWokenWithoutAService) {
    ::setenv("ZVCRYPT_CONF", "/dev/null", 1);
    zvhost::ReaderWatch watch;
    EXPECT_TRUE(watch.changed());
    watch.wake();
    watch.wait(LONG);
    std::thread waiting([&] { watch.wait(LONG); });
    watch.wake();
    waiting.join();
    watch.wait(std::chrono::milliseconds(1));
    ::unsetenv("ZVCRYPT_CONF");
}

} // namespace
