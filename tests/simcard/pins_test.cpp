#include "tests/simcard/objects.h"
#include "tests/support/process.h"

using namespace zvtest;

namespace {

constexpr CK_FLAGS PIN_FLAGS = CKF_USER_PIN_COUNT_LOW | CKF_USER_PIN_FINAL_TRY | CKF_USER_PIN_LOCKED;

// Loads the module in a process of its own and logs in; the result of the login.
CK_RV login_elsewhere(const char* pin) {
    const Ending ending = in_child([pin] {
        Module module;
        module->C_Initialize(nullptr);
        return module.login(module.open(), pin);
    });
    return static_cast<CK_RV>(ending.code);
}

class PinInOneProcess : public EmptyCard {
  protected:
    void SetUp() override {
        EmptyCard::SetUp();
        ASSERT_EQ(module->C_Logout(session), CKR_OK);
    }
};

} // namespace

TEST(Pin, IsCountedOverProcesses) {
    EmptyCards cards;
    cards.add();
    constexpr CK_FLAGS low = CKF_USER_PIN_COUNT_LOW;
    const struct {
        const char* pin;
        CK_RV answer;
        CK_FLAGS flags;
    } logins[] = {{"00000", CKR_PIN_INCORRECT, low},
                  {"", CKR_PIN_INCORRECT, low | CKF_USER_PIN_FINAL_TRY},
                  {USER_PIN, CKR_OK, 0},
                  {"00000", CKR_PIN_INCORRECT, low},
                  {"", CKR_PIN_INCORRECT, low | CKF_USER_PIN_FINAL_TRY},
                  {"00000", CKR_PIN_INCORRECT, low | CKF_USER_PIN_LOCKED},
                  {USER_PIN, CKR_PIN_LOCKED, low | CKF_USER_PIN_LOCKED},
                  {"00000", CKR_PIN_LOCKED, low | CKF_USER_PIN_LOCKED}};
    for (const auto& login : logins) {
        SCOPED_TRACE(&login - logins);
        EXPECT_EQ(login_elsewhere(login.pin), login.answer);
        Module module;
        module->C_Initialize(nullptr);
        EXPECT_EQ(module.token_flags() & PIN_FLAGS, login.flags);
    }
}

TEST_F(PinInOneProcess, LosesNoTryWhereNothingIsCompared) {
    EXPECT_EQ(module->C_Login(session, CKU_USER, nullptr, 0), CKR_ARGUMENTS_BAD);
    EXPECT_EQ(module.login(session + 1, "00000"), CKR_SESSION_HANDLE_INVALID);
    EXPECT_EQ(module.login(session, "00000000", CKU_SO), CKR_PIN_INCORRECT);
    EXPECT_EQ(module.login(session, USER_PIN), CKR_OK);
    EXPECT_EQ(module.login(session, "00000"), CKR_USER_ALREADY_LOGGED_IN);
    EXPECT_EQ(module.token_flags() & PIN_FLAGS, 0U);
}

TEST_F(PinInOneProcess, IsCountedInChangesAndFreedByTheOfficer) {
    CK_UTF8CHAR wrong[] = "00000";
    CK_UTF8CHAR fresh[] = "54321";
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(module->C_SetPIN(session, wrong, 5, fresh, 5), CKR_PIN_INCORRECT);
    EXPECT_EQ(module->C_SetPIN(session, wrong, 5, fresh, 5), CKR_PIN_LOCKED);
    EXPECT_EQ(module.login(session, USER_PIN), CKR_PIN_LOCKED);

    ASSERT_EQ(module.login(session, SO_PIN, CKU_SO), CKR_OK);
    ASSERT_EQ(module->C_InitPIN(session, fresh, 5), CKR_OK);
    ASSERT_EQ(module->C_Logout(session), CKR_OK);
    EXPECT_EQ(module.token_flags() & PIN_FLAGS, 0U);
    EXPECT_EQ(module.login(session, "54321"), CKR_OK);
}

// Also of keys that are made on the card, and where the PIN that they want is not the user's.
TEST_F(EmptyCard, HasKeysThatWantAPinForEachSignature) {
    const auto sign = [&](CK_OBJECT_HANDLE key, const char* pin, CK_RV* login = nullptr) {
        CK_MECHANISM mechanism{CKM_RSA_PKCS, nullptr, 0};
        CK_BYTE text[] = "text", signature[128];
        CK_ULONG length = sizeof signature;
        EXPECT_EQ(module->C_SignInit(session, &mechanism, key), CKR_OK);
        const CK_RV answer = pin ? module.login(session, pin, CKU_CONTEXT_SPECIFIC) : CK_RV{CKR_OK};
        if (login) *login = answer;
        return module->C_Sign(session, text, sizeof text, signature, &length);
    };
    Pair asks, other;
    for (const char* own : {"", "2468"}) {
        simcard::update_card(card.folder, [own](simcard::Card& card) {
            card.pin_each_signature = "DS";
            card.signature_pin = own;
        });
        restart();
        ASSERT_EQ(generate(module, session, "DS3", asks), CKR_OK);
        ASSERT_EQ(generate(module, session, "AUTHCertificate3", other), CKR_OK);
        EXPECT_EQ(read(module, session, asks.secret, CKA_ALWAYS_AUTHENTICATE), std::string(1, CK_TRUE));
        const char* right = *own ? own : USER_PIN;
        CK_RV login = 0;
        EXPECT_EQ(sign(other.secret, nullptr), CKR_OK);
        EXPECT_EQ(sign(asks.secret, nullptr), CKR_USER_NOT_LOGGED_IN) << own;
        EXPECT_EQ(sign(asks.secret, right), CKR_OK) << own;
        EXPECT_EQ(sign(asks.secret, nullptr), CKR_USER_NOT_LOGGED_IN) << own << ": for one signature";
        EXPECT_EQ(sign(asks.secret, *own ? USER_PIN : "2468", &login), CKR_USER_NOT_LOGGED_IN) << own;
        EXPECT_EQ(login, CKR_PIN_INCORRECT);
        EXPECT_EQ(simcard::load_card(card.folder).pin_tries_left, 2U);
        EXPECT_EQ(sign(asks.secret, right), CKR_OK) << own;
    }
}

TEST_F(EmptyCard, IsErasedByTheOfficer) {
    ASSERT_NE(store(module, session, "old"), 0U);
    ASSERT_EQ(module->C_CloseAllSessions(0), CKR_OK);
    CK_UTF8CHAR officer[] = "87654321";
    std::string label = "fresh" + std::string(27, ' ');
    ASSERT_EQ(module->C_InitToken(0, officer, 8, reinterpret_cast<CK_UTF8CHAR*>(label.data())), CKR_OK);
    EXPECT_EQ(simcard::load_card(card.folder).label, "fresh");
    EXPECT_EQ(labels(module, module.open()), "");
}
