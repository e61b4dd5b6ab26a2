#include "host/certificate_record.h"

#include <gtest/gtest.h>

namespace {

using namespace zvhost;

TEST(RecordTest, CountsDaysDownAcrossTheEnd) {
    constexpr std::time_t day = 24 * 60 * 60;
    constexpr std::time_t now = 1'000 * day;
    EXPECT_EQ(days_until(now + 2 * day, now), 2);
    EXPECT_EQ(days_until(now + 2 * day - 1, now), 1);
    EXPECT_EQ(days_until(now, now), 0);
    EXPECT_EQ(days_until(now - 1, now), -1);
    EXPECT_EQ(days_until(now - day - 1, now), -2);
    EXPECT_TRUE(ends_within(now + 90 * day, 90, now));
    EXPECT_FALSE(ends_within(now + 90 * day + 1, 90, now));
    EXPECT_TRUE(ends_within(now - day, 0, now));
}

} // namespace
