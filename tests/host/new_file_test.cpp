#include "host/error.h"
#include "host/new_file.h"
#include "host/read_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

static int error = 0; // what a file system answers that cannot rename without replacing

// These stand in for the C library's. There are no links either.
extern "C" int renameat2(int, const char* from, int, const char* to, unsigned int) noexcept {
    errno = error != 0 ? error : EEXIST;
    return error != 0 || std::filesystem::exists(to) ? -1 : std::rename(from, to);
}
extern "C" int link(const char*, const char*) noexcept {
    errno = EPERM;
    return -1;
}

namespace {

TEST(NewFileTest, IsMadeOnEveryFileSystemAndReplacesNothing) {
    const std::filesystem::path folder = testing::TempDir() + "zvrenew-file-" + std::to_string(::getpid());
    for (const int each : {0, EINVAL}) {
        error = each;
        std::filesystem::create_directory(folder);
        const zvhost::NewFile first(folder / "file"), second(folder / "file");
        first.save("one");
        EXPECT_THROW(second.save("two"), zvhost::Error);
        EXPECT_EQ(zvhost::read_file(folder / "file", "The file"), "one");
        EXPECT_THROW(zvhost::NewFile(folder / "file"), zvhost::Error);
        EXPECT_EQ(std::filesystem::remove_all(folder), 2U) << "the file alone";
    }
}

} // namespace
