#include "tests/simcard/objects.h"
#include "tests/support/process.h"

using namespace zvtest;

namespace {

class Removal : public EmptyCard {
  protected:
    CK_RV ask(CK_SESSION_HANDLE session) {
        CK_SESSION_INFO info{};
        return module->C_GetSessionInfo(session, &info);
    }

    simcard::Card other = cards.add("Other Reader");
};

} // namespace

TEST_F(Removal, IsAnsweredOnceAndEndsTheSession) {
    const auto other = module.open(1);
    ASSERT_EQ(module.take_out(0), 0);
    EXPECT_EQ(module->C_FindObjectsInit(session, nullptr, 0), CKR_DEVICE_REMOVED);
    EXPECT_EQ(module->C_FindObjectsInit(session, nullptr, 0), CKR_SESSION_HANDLE_INVALID);
    CK_TOKEN_INFO token{};
    EXPECT_EQ(module->C_GetTokenInfo(0, &token), CKR_TOKEN_NOT_PRESENT);
    EXPECT_EQ(module.open(0), 0U);
    EXPECT_EQ(ask(other), CKR_OK);

    ASSERT_EQ(module.put_back(0), 0);
    EXPECT_EQ(ask(session), CKR_SESSION_HANDLE_INVALID);
    const auto fresh = module.open(0);
    EXPECT_NE(fresh, session);
    CK_SESSION_INFO info{};
    ASSERT_EQ(module->C_GetSessionInfo(fresh, &info), CKR_OK);
    EXPECT_EQ(info.state, CKS_RW_PUBLIC_SESSION);
    EXPECT_EQ(module.login(fresh, USER_PIN), CKR_OK);
}

TEST_F(Removal, IsNoticedByTheSlotCallsFirst) {
    ASSERT_EQ(module.take_out(0), 0);
    CK_SLOT_INFO slot{};
    ASSERT_EQ(module->C_GetSlotInfo(0, &slot), CKR_OK);
    EXPECT_EQ(slot.flags & CKF_TOKEN_PRESENT, 0U);
    EXPECT_EQ(ask(session), CKR_SESSION_HANDLE_INVALID);
    CK_SLOT_ID list[4];
    CK_ULONG count = 4;
    ASSERT_EQ(module->C_GetSlotList(CK_TRUE, list, &count), CKR_OK);
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(list[0], 1U);
}

TEST_F(Removal, IsNoticedWhenTheCardIsBackAlready) {
    const Ending other_process = in_child([this] {
        simcard::take_out_card(card.folder);
        simcard::put_back_card(card.folder);
        return 0;
    });
    ASSERT_EQ(other_process.code, 0);
    EXPECT_EQ(module.login(session, USER_PIN), CKR_DEVICE_REMOVED);
    EXPECT_EQ(module.login(module.open(0), USER_PIN), CKR_OK);
}

TEST_F(Removal, HappensInTheMiddleOfACallByRule) {
    ASSERT_EQ(module.add_rules("C_GenerateKeyPair:1:take-out; C_GetSlotList:1:put-back:0"), 0);
    Pair pair;
    EXPECT_EQ(generate(module, session, "DS3", pair), CKR_DEVICE_REMOVED);
    CK_ULONG count = 0;
    ASSERT_EQ(module->C_GetSlotList(CK_TRUE, nullptr, &count), CKR_OK);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(module.take_out(9), 1);
}
