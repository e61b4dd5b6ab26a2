#include "simcard/common/softhsm.h"
#include "tests/simcard/objects.h"

using namespace zvtest;

TEST(FunctionList, IsInTheStandardsOrder) {
    Module module;
    const auto place = [&](const auto& entry) {
        return reinterpret_cast<void* const*>(&entry) - reinterpret_cast<void* const*>(&module->C_Initialize);
    };
    EXPECT_EQ(place(module->C_Login), 18);
    EXPECT_EQ(place(module->C_GenerateKeyPair), 59);
    EXPECT_EQ(place(module->C_WaitForSlotEvent), 67);
    EXPECT_EQ(module->C_GetFunctionList(nullptr), CKR_ARGUMENTS_BAD);
}

TEST(Process, KeepsItsEnvironment) {
    EmptyCards cards;
    cards.add();
    for (const char* before : {static_cast<const char*>(nullptr), "/somewhere/else"}) {
        if (before) ::setenv("SOFTHSM2_CONF", before, 1);
        Module module;
        ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
        ASSERT_EQ(module.login(module.open(), USER_PIN), CKR_OK);
        EXPECT_STREQ(std::getenv("SOFTHSM2_CONF"), before);
    }
    ::unsetenv("SOFTHSM2_CONF");
}

TEST_F(EmptyCard, IsSharedByAModuleThatIsLoadedTwice) {
    {
        Module second;
        EXPECT_EQ(second->C_Initialize(nullptr), CKR_CRYPTOKI_ALREADY_INITIALIZED);
        EXPECT_EQ(second.list(), module.list());
    }
    EXPECT_EQ(module->C_Finalize(nullptr), CKR_CRYPTOKI_NOT_INITIALIZED);
}

TEST_F(EmptyCard, IsSeenByCopiesOfTheModuleBesideEachOther) {
    const auto path = cards.path() / "libcardos11.so";
    std::filesystem::copy_file(ZVSIMCARD_MODULE, path);
    const simcard::SoftHsm hosts_own(cards.path());
    Module copy(path);
    ASSERT_EQ(module.add_rules("C_Login:*:answer:0x5"), 0);
    ASSERT_EQ(copy->C_Initialize(nullptr), CKR_OK);
    const auto session = copy.open();
    EXPECT_EQ(copy.login(session, USER_PIN), CKR_OK);
    EXPECT_EQ(module.login(session, USER_PIN), CKR_GENERAL_ERROR);
    ASSERT_EQ(module->C_Finalize(nullptr), CKR_OK);
    EXPECT_NE(store(copy, session, "still there"), 0U);
}

TEST(Process, SurvivesAFolderThatSoftHsmCannotUse) {
    const EmptyCards cards;
    ::setenv("ZVSIMCARD_HOME", (cards.path() / "a#b").c_str(), 1);
    {
        testing::internal::CaptureStderr();
        Module module;
        EXPECT_EQ(module->C_Initialize(nullptr), CKR_GENERAL_ERROR);
        EXPECT_NE(testing::internal::GetCapturedStderr().find("cannot use a folder of this name"),
                  std::string::npos);
    }
    ::setenv("ZVSIMCARD_HOME", (cards.path() / "new").c_str(), 1);
    Module module;
    EXPECT_EQ(module->C_Initialize(nullptr), CKR_OK);
    CK_ULONG count = 9;
    EXPECT_EQ(module->C_GetSlotList(CK_FALSE, nullptr, &count), CKR_OK);
    EXPECT_EQ(count, 0U);
}
