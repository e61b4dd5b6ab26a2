#include "front/standing.h"
#include "pkcs11/forwarding.h"
#include "tests/front/front.h"

#include <thread>

using namespace zvtest;
using pkcs11::Function;

TEST_F(BeforeCard, StartsTheModuleOnceAndLetsEachLoginReachTheCard) {
    EXPECT_EQ(front->C_GetInfo(nullptr), CKR_CRYPTOKI_NOT_INITIALIZED);
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(front->C_Initialize(nullptr), CKR_OK);
        EXPECT_EQ(front->C_Initialize(nullptr), CKR_CRYPTOKI_ALREADY_INITIALIZED);
        const auto left_open = front.open();
        EXPECT_EQ(front.login(left_open, USER_PIN), CKR_OK);
        EXPECT_EQ(front.login(left_open, USER_PIN), CKR_USER_ALREADY_LOGGED_IN);
        ASSERT_EQ(front->C_Finalize(nullptr), CKR_OK);
        EXPECT_EQ(front->C_Finalize(nullptr), CKR_CRYPTOKI_NOT_INITIALIZED);
        EXPECT_EQ(front.open(), 0U);
    }
    EXPECT_EQ(card.calls("C_Initialize"), 1U);
    EXPECT_EQ(card.calls("C_Finalize"), 0U);
    EXPECT_EQ(card.calls("C_Login"), 6U);
    front.let_go();
    EXPECT_EQ(card.calls("C_Finalize"), 1U);
    EXPECT_EQ(front->C_Initialize(nullptr), CKR_OK);
    EXPECT_EQ(card.calls("C_Initialize"), 2U);
}

TEST_F(BeforeCard, SpendsOneTryOnAWrongPin) {
    for (const CK_FLAGS flags : {CKF_USER_PIN_COUNT_LOW, CKF_USER_PIN_COUNT_LOW | CKF_USER_PIN_FINAL_TRY}) {
        ASSERT_EQ(front->C_Initialize(nullptr), CKR_OK);
        EXPECT_EQ(front.login(front.open(), "54321"), CKR_PIN_INCORRECT);
        EXPECT_EQ(card.token_flags() & (CKF_USER_PIN_COUNT_LOW | CKF_USER_PIN_FINAL_TRY), flags);
        ASSERT_EQ(front->C_Finalize(nullptr), CKR_OK);
    }
    EXPECT_EQ(card.calls("C_Login"), 2U);
}

TEST_F(BeforeCard, LeavesAModuleToWhoeverStartedIt) {
    ASSERT_EQ(card->C_Initialize(nullptr), CKR_OK);
    const auto of_another = card.open();
    ASSERT_EQ(card.login(of_another, USER_PIN), CKR_OK);
    ASSERT_EQ(front->C_Initialize(nullptr), CKR_OK);
    const auto session = front.open();
    // The other's login does not make a wrong PIN right.
    EXPECT_EQ(front.login(session, "54321"), CKR_PIN_INCORRECT);
    EXPECT_EQ(front.login(session, USER_PIN), CKR_OK);
    ASSERT_EQ(front->C_Finalize(nullptr), CKR_OK);
    front.let_go();
    EXPECT_EQ(card.calls("C_Finalize"), 0U);
    EXPECT_EQ(card->C_GetInfo(nullptr), CKR_ARGUMENTS_BAD);
}

TEST_F(BeforeCard, SeesACardThatIsTakenOutPutBackAndChanged) {
    ASSERT_EQ(front->C_Initialize(nullptr), CKR_OK);
    EXPECT_EQ(front.slots(CK_TRUE).size(), 1U);
    const auto session = front.open();
    ASSERT_EQ(front.login(session, USER_PIN), CKR_OK);
    ASSERT_EQ(card.take_out(), 0);
    EXPECT_EQ(front.store(session, "a"), CKR_DEVICE_REMOVED);
    ASSERT_EQ(front->C_Finalize(nullptr), CKR_OK);

    ASSERT_EQ(front->C_Initialize(nullptr), CKR_OK);
    EXPECT_EQ(front.slots(CK_TRUE).size(), 0U);
    EXPECT_EQ(front.open(), 0U);
    ASSERT_EQ(front->C_Finalize(nullptr), CKR_OK);

    ASSERT_EQ(card.put_back(), 0);
    simcard::Card other = simcard::load_card(made.folder);
    other.serial = "OTHER";
    simcard::save_card(other);
    const auto asked = card.calls("C_GetSlotList");
    ASSERT_EQ(front->C_Initialize(nullptr), CKR_OK);
    // Whoever goes by a number that was found out before has the module look at its readers, too.
    CK_TOKEN_INFO token{};
    ASSERT_EQ(front->C_GetTokenInfo(0, &token), CKR_OK);
    EXPECT_EQ(std::string(token.serialNumber, token.serialNumber + 5), "OTHER");
    EXPECT_EQ(card.calls("C_GetSlotList"), asked + 1);
    EXPECT_EQ(front.store(front.open(), "a"), CKR_USER_NOT_LOGGED_IN);
    EXPECT_EQ(card.calls("C_GetSlotList"), asked + 1);
}

TEST_F(BeforeCard, StartsAModuleAnewThatNobodyHasUsedForLong) {
    zvfront::Standing patient(ZVSIMCARD_MODULE), hasty(ZVSIMCARD_MODULE, std::chrono::milliseconds(-1));
    const auto open_twice = [](zvfront::Standing& standing) {
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(standing.answer(pkcs11::make_call<Function::C_Initialize>(CK_VOID_PTR{})), CKR_OK);
            EXPECT_EQ(standing.answer(pkcs11::make_call<Function::C_Finalize>(CK_VOID_PTR{})), CKR_OK);
        }
        standing.let_go();
    };
    open_twice(patient);
    EXPECT_EQ(card.calls("C_Initialize"), 1U);
    open_twice(hasty);
    EXPECT_EQ(card.calls("C_Initialize"), 3U);
}

TEST_F(BeforeCard, StartsAModuleAnewThatLostItsReaders) {
    ASSERT_EQ(front->C_Initialize(nullptr), CKR_OK);
    ASSERT_EQ(front->C_Finalize(nullptr), CKR_OK);
    ASSERT_EQ(card.add_rules("C_GetSlotList:1:answer:0x30"), 0);
    ASSERT_EQ(front->C_Initialize(nullptr), CKR_OK);
    EXPECT_EQ(front.slots(CK_TRUE).size(), 1U);
    EXPECT_EQ(card.calls("C_Initialize"), 2U);
    // What is open is not given up for it.
    const auto session = front.open();
    ASSERT_EQ(card.add_rules("C_GetSlotList:1:answer:0x30"), 0);
    CK_ULONG count = 0;
    EXPECT_EQ(front->C_GetSlotList(CK_FALSE, nullptr, &count), CKR_DEVICE_ERROR);
    EXPECT_EQ(front.login(session, USER_PIN), CKR_OK);
}

TEST_F(BeforeCard, WritesNoNameThatIsThereAlready) {
    ASSERT_EQ(front->C_Initialize(nullptr), CKR_OK);
    const auto session = front.open();
    ASSERT_EQ(front.login(session, USER_PIN), CKR_OK);
    ASSERT_EQ(front.store(session, "DS3"), CKR_OK);
    const auto object = find_all(card, session).at(0);
    const auto writes_of = [&](CK_ATTRIBUTE_TYPE type, std::string text) {
        const auto before = card.calls("C_SetAttributeValue");
        CK_ATTRIBUTE entry{type, text.data(), text.size()};
        (void)front->C_SetAttributeValue(session, object, &entry, 1);
        EXPECT_TRUE(type != CKA_LABEL || read(card, session, object, type) == text) << text;
        return card.calls("C_SetAttributeValue") - before;
    };
    EXPECT_EQ(writes_of(CKA_LABEL, "DS3"), 0U);
    for (const char* other : {"DS4", "DS", "DS41", "", "DS3"})
        EXPECT_EQ(writes_of(CKA_LABEL, other), 1U) << other;
    // What is no name, and what cannot be read, is written.
    EXPECT_EQ(writes_of(CKA_VALUE, read(card, session, object, CKA_VALUE)), 1U);
    ASSERT_EQ(card.add_rules("C_GetAttributeValue:1:answer:0x30"), 0);
    EXPECT_EQ(writes_of(CKA_LABEL, "DS3"), 1U);
}

TEST_F(BeforeCard, LetsThreadsInOneByOne) {
    ASSERT_EQ(front->C_Initialize(nullptr), CKR_OK);
    ASSERT_EQ(front.login(front.open(), USER_PIN), CKR_OK);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 5; ++round) {
                const auto session = front.open();
                EXPECT_EQ(front.store(session, "a"), CKR_OK);
                EXPECT_EQ(front->C_CloseSession(session), CKR_OK);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(front.objects(front.open()), 20U);
}

TEST(Front, StandsBeforeSeveralModulesWithoutMixingThemUp) {
    EmptyCards cards;
    cards.add();
    const auto copy = cards.path() / "libother.so";
    std::filesystem::copy_file(ZVSIMCARD_MODULE, copy);
    Module first, second(copy);
    const Front before_first(ZVSIMCARD_MODULE), before_second(copy, "libother.so");
    EXPECT_NE(before_first.list(), before_second.list());
    ASSERT_EQ(before_first->C_Initialize(nullptr), CKR_OK);
    ASSERT_EQ(before_second->C_Initialize(nullptr), CKR_OK);
    EXPECT_EQ(before_first.login(before_first.open(), USER_PIN), CKR_OK);
    EXPECT_EQ(before_second.login(before_second.open(), USER_PIN), CKR_OK);
    EXPECT_EQ(first.calls("C_Login"), 1U);
    EXPECT_EQ(second.calls("C_Login"), 1U);
    CK_FUNCTION_LIST* list = nullptr;
    EXPECT_EQ(before_first->C_GetFunctionList(&list), CKR_OK);
    EXPECT_EQ(list, before_first.list());
}

TEST(Front, TakesAModuleThatTakesNoLocksAndLacksFunctions) {
    const Front front(ZVFRONT_LOCKLESS);
    ASSERT_EQ(front->C_Initialize(nullptr), CKR_OK);
    CK_SLOT_INFO info{};
    EXPECT_EQ(front->C_GetSlotInfo(0, &info), CKR_FUNCTION_NOT_SUPPORTED);
    EXPECT_EQ(front->C_CloseSession(front.open()), CKR_FUNCTION_NOT_SUPPORTED);
    EXPECT_EQ(front->C_Finalize(nullptr), CKR_OK);
}

TEST(Front, StartsAModuleAnewThatMixesUpItsObjects) {
    const Front front(ZVFRONT_LOCKLESS);
    const auto starts_after = [&](bool creates) {
        CK_INFO info{};
        CK_OBJECT_HANDLE object = 0;
        CK_ULONG count = 0;
        EXPECT_EQ(front->C_Initialize(nullptr), CKR_OK);
        EXPECT_EQ(front->C_FindObjects(front.open(), &object, 1, &count), CKR_OK);
        const auto create = front->C_CreateObject;
        EXPECT_EQ(creates ? create(front.open(), nullptr, 0, &object) : CKR_OK, CKR_OK);
        EXPECT_EQ(front->C_GetInfo(&info), CKR_OK);
        EXPECT_EQ(front->C_Finalize(nullptr), CKR_OK);
        return info.flags;
    };
    const CK_FLAGS first = starts_after(false);
    EXPECT_EQ(starts_after(true), first);
    EXPECT_EQ(starts_after(false), first + 1);
    EXPECT_EQ(starts_after(false), first + 1);
}

TEST(Front, StaysAwayFromWhatIsNoModule) {
    EXPECT_FALSE(Front("/nowhere/libcardos11.so").stands());
    EXPECT_FALSE(Front("/proc/self/exe").stands());
}
