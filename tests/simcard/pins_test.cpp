#include "tests/simcard/objects.h"
#include "tests/support/card.h"
#include "tests/support/process.h"

#include <gtest/gtest.h>

using namespace zvtest;

namespace {

constexpr CK_FLAGS pin_flags = CKF_USER_PIN_COUNT_LOW | CKF_USER_PIN_FINAL_TRY | CKF_USER_PIN_LOCKED;

/// Loads the module in a process of its own and logs in; the result of the login.
CK_RV login_elsewhere(const char* pin) {
    const Ending ending = in_child([pin] {
        Module module;
        module->C_Initialize(nullptr);
        return module.login(module.open(), pin);
    });
    return static_cast<CK_RV>(ending.code);
}

CK_FLAGS flags_elsewhere() {
    Module module;
    module->C_Initialize(nullptr);
    return module.token_flags() & pin_flags;
}

} // namespace

TEST(Pin, LocksAfterThreeTriesInThreeProcesses) {
    EmptyCards cards;
    cards.add();
    EXPECT_EQ(flags_elsewhere(), 0U);
    EXPECT_EQ(login_elsewhere("00000"), CKR_PIN_INCORRECT);
    EXPECT_EQ(flags_elsewhere(), CKF_USER_PIN_COUNT_LOW);
    EXPECT_EQ(login_elsewhere(""), CKR_PIN_INCORRECT);
    EXPECT_EQ(flags_elsewhere(), CKF_USER_PIN_COUNT_LOW | CKF_USER_PIN_FINAL_TRY);
    EXPECT_EQ(login_elsewhere("00000"), CKR_PIN_INCORRECT);
    EXPECT_EQ(flags_elsewhere(), CKF_USER_PIN_COUNT_LOW | CKF_USER_PIN_LOCKED);
    EXPECT_EQ(login_elsewhere(user_pin), CKR_PIN_LOCKED);
    EXPECT_EQ(login_elsewhere("00000"), CKR_PIN_LOCKED);
}

TEST(Pin, HasItsTriesBackAfterAGoodLogin) {
    EmptyCards cards;
    cards.add();
    EXPECT_EQ(login_elsewhere("00000"), CKR_PIN_INCORRECT);
    EXPECT_EQ(login_elsewhere("00000"), CKR_PIN_INCORRECT);
    EXPECT_EQ(login_elsewhere(user_pin), CKR_OK);
    EXPECT_EQ(flags_elsewhere(), 0U);
}

TEST(Pin, LosesNoTryWhereNothingIsCompared) {
    EmptyCards cards;
    cards.add();
    Module module;
    ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
    const auto session = module.open();
    EXPECT_EQ(module->C_Login(session, CKU_USER, nullptr, 0), CKR_ARGUMENTS_BAD);
    EXPECT_EQ(module.login(session + 1, "00000"), CKR_SESSION_HANDLE_INVALID);
    EXPECT_EQ(module.login(session, "00000000", CKU_SO), CKR_PIN_INCORRECT);
    EXPECT_EQ(module.login(session, user_pin), CKR_OK);
    EXPECT_EQ(module.login(session, "00000"), CKR_USER_ALREADY_LOGGED_IN);
    EXPECT_EQ(module.token_flags() & pin_flags, 0U);
}

TEST(Pin, IsCountedInChangesAndFreedByTheOfficer) {
    EmptyCards cards;
    cards.add();
    Module module;
    ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
    const auto session = module.open();
    CK_UTF8CHAR wrong[] = "00000";
    CK_UTF8CHAR fresh[] = "54321";
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(module->C_SetPIN(session, wrong, 5, fresh, 5), CKR_PIN_INCORRECT);
    EXPECT_EQ(module->C_SetPIN(session, wrong, 5, fresh, 5), CKR_PIN_LOCKED);
    EXPECT_EQ(module.login(session, user_pin), CKR_PIN_LOCKED);

    ASSERT_EQ(module.login(session, so_pin, CKU_SO), CKR_OK);
    ASSERT_EQ(module->C_InitPIN(session, fresh, 5), CKR_OK);
    ASSERT_EQ(module->C_Logout(session), CKR_OK);
    EXPECT_EQ(module.token_flags() & pin_flags, 0U);
    EXPECT_EQ(module.login(session, "54321"), CKR_OK);
}

TEST(Token, IsErasedByTheOfficer) {
    EmptyCards cards;
    const auto card = cards.add();
    Module module;
    ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
    const auto session = module.open();
    EXPECT_EQ(module.login(session, "00000"), CKR_PIN_INCORRECT);
    ASSERT_EQ(module.login(session, user_pin), CKR_OK);
    ASSERT_NE(store(module, session, "old"), 0U);
    ASSERT_EQ(module->C_CloseAllSessions(0), CKR_OK);
    std::string officer = so_pin;
    std::string label = "fresh" + std::string(27, ' ');
    ASSERT_EQ(module->C_InitToken(0, reinterpret_cast<CK_UTF8CHAR*>(officer.data()), officer.size(),
                                  reinterpret_cast<CK_UTF8CHAR*>(label.data())),
              CKR_OK);
    EXPECT_EQ(simcard::load_card(card.folder).label, "fresh");
    EXPECT_EQ(labels(module, module.open()), "");
}
