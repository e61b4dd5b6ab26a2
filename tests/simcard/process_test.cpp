#include "simcard/common/softhsm.h"
#include "tests/simcard/objects.h"
#include "tests/support/card.h"

#include <cstring>
#include <fstream>
#include <gtest/gtest.h>

using namespace zvtest;

namespace {

std::size_t open_files() {
    const std::filesystem::directory_iterator files("/dev/fd");
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

std::size_t loaded_files() {
    std::ifstream maps("/proc/self/maps");
    std::size_t lines = 0;
    for (std::string line; std::getline(maps, line);)
        lines += line.find("softhsm") != std::string::npos || line.find("zvsimcard") != std::string::npos;
    return lines;
}

void use_once() {
    Module module;
    ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
    ASSERT_EQ(module.login(module.open(), user_pin), CKR_OK);
}

} // namespace

TEST(FunctionList, HoldsTheExportedFunctionsInTheStandardsOrder) {
    Module module;
    const auto* entries = reinterpret_cast<void* const*>(&module.list()->C_Initialize);
    std::size_t place = 0;
#define EXPECT_ENTRY(name, parameters, names)                                                                \
    EXPECT_EQ(entries[place++], module.function<void*>(#name)) << #name;
    CK_EACH_FUNCTION(EXPECT_ENTRY)
#undef EXPECT_ENTRY
    EXPECT_EQ(place, 68U);
    EXPECT_EQ(entries[18], module.function<void*>("C_Login"));
    EXPECT_EQ(entries[59], module.function<void*>("C_GenerateKeyPair"));
    EXPECT_EQ(entries[67], module.function<void*>("C_WaitForSlotEvent"));
    EXPECT_EQ(module->C_GetFunctionList(nullptr), CKR_ARGUMENTS_BAD);
}

TEST(Process, KeepsItsEnvironment) {
    EmptyCards cards;
    cards.add();
    ::setenv("SOFTHSM2_CONF", "/somewhere/else", 1);
    use_once();
    EXPECT_STREQ(std::getenv("SOFTHSM2_CONF"), "/somewhere/else");
    ::unsetenv("SOFTHSM2_CONF");
    use_once();
    EXPECT_EQ(std::getenv("SOFTHSM2_CONF"), nullptr);
}

TEST(Process, KeepsNothingOfAModuleThatIsUnloaded) {
    EmptyCards cards;
    cards.add();
    use_once();
    const std::size_t files = open_files();
    for (int round = 0; round < 30; ++round)
        use_once();
    EXPECT_EQ(open_files(), files);
    EXPECT_EQ(loaded_files(), 0U);
}

TEST(Process, SharesAModuleThatIsLoadedTwice) {
    EmptyCards cards;
    cards.add();
    Module first;
    ASSERT_EQ(first->C_Initialize(nullptr), CKR_OK);
    {
        Module second;
        EXPECT_EQ(second->C_Initialize(nullptr), CKR_CRYPTOKI_ALREADY_INITIALIZED);
        EXPECT_EQ(second.list(), first.list());
    }
    EXPECT_EQ(first->C_Finalize(nullptr), CKR_CRYPTOKI_NOT_INITIALIZED);
}

TEST(Process, HoldsCopiesUnderOtherNamesBesideEachOther) {
    EmptyCards cards;
    cards.add();
    const auto path = cards.path() / "libcardos11.so";
    std::filesystem::copy_file(ZVSIMCARD_MODULE, path);
    const simcard::SoftHsm hosts_own(cards.path());
    Module plain;
    Module copy(path);
    ASSERT_EQ(plain.add_rules("C_Login:*:answer:0x5"), 0);
    ASSERT_EQ(plain->C_Initialize(nullptr), CKR_OK);
    ASSERT_EQ(copy->C_Initialize(nullptr), CKR_OK);
    const auto session = copy.open();
    EXPECT_EQ(copy.login(session, user_pin), CKR_OK);
    EXPECT_EQ(plain.login(plain.open(), user_pin), CKR_GENERAL_ERROR);
    ASSERT_EQ(plain->C_Finalize(nullptr), CKR_OK);
    EXPECT_NE(store(copy, session, "still there"), 0U);
}

TEST(Process, SurvivesAFolderThatSoftHsmCannotUse) {
    const TemporaryFolder folder;
    const auto odd = folder.path() / "a#b";
    ::setenv("ZVSIMCARD_HOME", odd.c_str(), 1);
    {
        testing::internal::CaptureStderr();
        Module module;
        EXPECT_EQ(module->C_Initialize(nullptr), CKR_GENERAL_ERROR);
        EXPECT_NE(testing::internal::GetCapturedStderr().find("cannot use a folder of this name"),
                  std::string::npos);
    }
    ::setenv("ZVSIMCARD_HOME", (folder.path() / "new").c_str(), 1);
    {
        Module module;
        EXPECT_EQ(module->C_Initialize(nullptr), CKR_OK);
        CK_ULONG count = 9;
        EXPECT_EQ(module->C_GetSlotList(CK_FALSE, nullptr, &count), CKR_OK);
        EXPECT_EQ(count, 0U);
    }
    ::unsetenv("ZVSIMCARD_HOME");
}
