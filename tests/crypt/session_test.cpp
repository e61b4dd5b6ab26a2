#include "tests/crypt/certificates.h"
#include "tests/crypt/scratch.h"
#include "tests/support/card.h"
#include "tests/support/module.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

using test::last_error;

class Session : public test::Scratch {
  protected:
    Session() { card = cards.add("Desk Reader 00 00", "1205000000000001"); }
    ~Session() override { (void)kvFinalize(); }

    static int initialize(std::string path, int slot = 0) { return kvInitialize(path.data(), slot); }
    int read_card() { return kvCheckSmartCard(label, manufacturer, model, serial); }
    static void expect_login(const char* pin, int code, const std::string& sentence) {
        EXPECT_EQ(kvLogin(pin), code) << pin;
        EXPECT_NE(last_error().find(sentence), std::string::npos) << last_error();
    }

    zvtest::EmptyCards cards;
    simcard::Card card;
    zvtest::Module module;
    char label[80] = "x", manufacturer[48] = "x", model[32] = "x", serial[32] = "x";
};

} // namespace

TEST_F(Session, FinalisesAModuleOnlyIfItInitialisedIt) {
    CK_INFO info;
    ASSERT_EQ(initialize(ZVSIMCARD_MODULE), ZVC_OK) << last_error();
    EXPECT_EQ(module->C_GetInfo(&info), CKR_OK);
    EXPECT_EQ(kvFinalize(), ZVC_OK);
    EXPECT_EQ(module->C_GetInfo(&info), CKR_CRYPTOKI_NOT_INITIALIZED);

    ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
    ASSERT_EQ(initialize(ZVSIMCARD_MODULE), ZVC_OK) << last_error();
    EXPECT_EQ(kvFinalize(), ZVC_OK);
    EXPECT_EQ(initialize(ZVSIMCARD_MODULE, 9), ZVC_ERR_MODULE);
    EXPECT_EQ(module->C_GetInfo(&info), CKR_OK) << "not ours to finalise";
    // Finalised under an open session: closing it is no failure.
    ASSERT_EQ(initialize(ZVSIMCARD_MODULE), ZVC_OK);
    ASSERT_EQ(module->C_Finalize(nullptr), CKR_OK);
    EXPECT_EQ(kvFinalize(), ZVC_OK);
    EXPECT_EQ(kvFinalize(), ZVC_OK) << "nothing is open";
}

#ifdef __GLIBC__
// Each opening once left a handler in the process's list of those for its exit, for good.
TEST_F(Session, LeavesNothingWithTheProcessWhenItIsClosed) {
    const auto open_and_close = [](int times) {
        for (; times > 0; --times)
            ASSERT_TRUE(initialize(ZVSIMCARD_MODULE) == ZVC_OK && kvFinalize() == ZVC_OK) << last_error();
    };
    open_and_close(50);
    const std::size_t before = ::mallinfo2().uordblks;
    open_and_close(300);
    EXPECT_LT(::mallinfo2().uordblks, before + 32768) << "a handler and a module's own take 270 an opening";
}
#endif

TEST_F(Session, EveryStateOfThePinHasItsCodeAndSentence) {
    expect_login("secret-77", ZVC_ERR_NO_SESSION, "Nessuna sessione");
    ASSERT_EQ(initialize(ZVSIMCARD_MODULE), ZVC_OK) << last_error();
    expect_login("", ZVC_ERR_PIN_EMPTY, "PIN mancante");
    expect_login(nullptr, ZVC_ERR_ARGUMENT, "Argomento");
    EXPECT_EQ(module.calls("C_Login"), 0U);
    for (int time = 0; time < 2; ++time) // the second time it is logged in already
        expect_login(zvtest::USER_PIN, ZVC_OK, "");
    EXPECT_EQ(last_error(), "");
    ASSERT_EQ(module.add_rules("C_Login:1:answer:0xA3;C_Login:2:answer:0xA2"), 0);
    ASSERT_EQ(initialize(ZVSIMCARD_MODULE), ZVC_OK);
    expect_login("secret-77", ZVC_ERR_PIN_EXPIRED, "PIN scaduto");
    expect_login("secret-77", ZVC_ERR_PIN_FORM, "lunghezza");
    expect_login("secret-77", ZVC_ERR_PIN_INCORRECT, "PIN errato");
    EXPECT_EQ(last_error().find("secret-77"), std::string::npos);
    expect_login("secret-77", ZVC_ERR_PIN_INCORRECT, "Resta un solo tentativo");
    expect_login("secret-77", ZVC_ERR_PIN_INCORRECT, "Il PIN ora è bloccato");
    expect_login(zvtest::USER_PIN, ZVC_ERR_PIN_LOCKED, "PIN bloccato");
}

TEST_F(Session, TokenTextsAreBoundedWhateverTheirPadding) {
    EXPECT_EQ(read_card(), ZVC_ERR_NO_SESSION);
    EXPECT_EQ(std::string(label) + manufacturer + model + serial, "");
    ASSERT_EQ(initialize(ZVSIMCARD_MODULE), ZVC_OK) << last_error();
    ASSERT_EQ(read_card(), ZVC_OK) << last_error();
    EXPECT_STREQ(label, "card");
    EXPECT_STREQ(serial, "1205000000000001");
    ASSERT_EQ(module.add_rules("C_GetTokenInfo:1:absurd:text"), 0);
    ASSERT_EQ(read_card(), ZVC_OK);
    EXPECT_EQ(label, std::string(32, 'X'));
    EXPECT_EQ(serial, std::string(16, 'X'));
    ASSERT_EQ(initialize(ODD_MODULE, 7), ZVC_OK) << last_error();
    ASSERT_EQ(read_card(), ZVC_OK);
    EXPECT_STREQ(manufacturer, "è\\ ???[2J?.?") << "UTF-8 that a terminal may show";
    EXPECT_STREQ(model, "model");
    EXPECT_STREQ(serial, "12050001");
}

TEST_F(Session, WhatIsNoModuleOrNoAnswerIsRefused) {
    for (const std::string& path :
         {std::string(), path("missing.so"), write("text.so", "x"), std::string("libcrypto.so.3")})
        EXPECT_EQ(initialize(path), ZVC_ERR_MODULE_LOAD) << path;
    EXPECT_EQ(initialize(ODD_MODULE, 0), ZVC_ERR_MODULE_ANSWER) << "a session without a handle";
    expect_login("1", ZVC_ERR_NO_SESSION, "Nessuna sessione");
    ASSERT_EQ(initialize(ODD_MODULE, 7), ZVC_OK);
    expect_login("1", ZVC_ERR_MODULE, "C_Login: 0x54");
    EXPECT_EQ(kvFinalize(), ZVC_ERR_MODULE) << "an entry that is missing";
    EXPECT_EQ(kvFinalize(), ZVC_OK) << "closed all the same";
}

TEST_F(Session, ACardThatIsTakenOutIsToldAndClosesWithoutFailure) {
    ASSERT_EQ(initialize(ZVSIMCARD_MODULE), ZVC_OK) << last_error();
    ASSERT_EQ(module.take_out(), 0);
    EXPECT_EQ(read_card(), ZVC_ERR_CARD_REMOVED);
    expect_login(zvtest::USER_PIN, ZVC_ERR_CARD_REMOVED, "estratta");
    EXPECT_EQ(kvFinalize(), ZVC_OK);
    EXPECT_EQ(initialize(ZVSIMCARD_MODULE), ZVC_ERR_CARD_REMOVED);
    ASSERT_EQ(module.put_back(), 0);
    EXPECT_EQ(initialize(ZVSIMCARD_MODULE), ZVC_OK);
}

TEST_F(Session, AnExitHandlerOfBeforeFindsTheCardClosed) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto close = [] { ::_exit(kvFinalize() == ZVC_OK ? 0 : 3); };
    EXPECT_EXIT((std::atexit(close), (void)initialize(ODD_MODULE, 7), std::exit(4)),
                testing::ExitedWithCode(0), "");
}
