#include "host/error.h"
#include "host/lock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <optional>

namespace {

using namespace zvhost;

TEST(LockTest, LetsOneInAndSaysWho) {
    const std::string name = "test-" + std::to_string(::getpid()), path = "/tmp/zvrenew-" + name + ".lock";
    std::optional<Lock> first(std::in_place, name, "busy-card");
    EXPECT_NE(::fcntl(100, F_GETFD), -1) << "modules close the lowest descriptors";
    try {
        const Lock second(name, "busy-card");
        ADD_FAILURE();
    } catch (const Error& stop) {
        EXPECT_EQ(stop.exit, Exit::refused);
#ifndef __APPLE__
        EXPECT_EQ(std::get<long>(stop.advice.front().values.front().second), long{::getpid()});
#endif
    }
    EXPECT_TRUE(first->holds());
    ::unlink(path.c_str());
    EXPECT_FALSE(first->holds()) << "another could get in";
    const Lock third(name, "busy-card");
    first.reset();
    EXPECT_TRUE(third.holds()) << "the first left what is not its own";
    ::close(100);
}

} // namespace
