#include "odd_module.h"
#include "scratch.h"
#include "token.h"

#include <cstring>

namespace {

using test::lastError;

class Session : public test::Scratch {
  protected:
    ~Session() override { (void)kvFinalize(); }
    static int initialize(std::string module, int slot) { return kvInitialize(module.data(), slot); }
    static int odd(Oddity oddity) { return initialize(ODD_MODULE, oddity); }
};

} // namespace

TEST_F(Session, FinalisesAModuleOnlyIfItInitialisedIt) {
    test::Token token(folder);
    token.release();
    CK_INFO info;
    ASSERT_EQ(initialize(SOFTHSM_MODULE, token.slot()), ZVC_OK) << lastError();
    EXPECT_EQ(token.module().C_GetInfo(&info), CKR_OK);
    EXPECT_EQ(kvFinalize(), ZVC_OK);
    EXPECT_EQ(token.module().C_GetInfo(&info), CKR_CRYPTOKI_NOT_INITIALIZED);

    ASSERT_EQ(token.module().C_Initialize(nullptr), CKR_OK);
    ASSERT_EQ(initialize(SOFTHSM_MODULE, token.slot()), ZVC_OK) << lastError();
    EXPECT_EQ(kvFinalize(), ZVC_OK);
    EXPECT_EQ(initialize(SOFTHSM_MODULE, 999999), ZVC_ERR_MODULE);
    EXPECT_EQ(token.module().C_GetInfo(&info), CKR_OK) << "not ours to finalise";
    // Finalised under an open session: closing it is no failure.
    ASSERT_EQ(initialize(SOFTHSM_MODULE, token.slot()), ZVC_OK);
    ASSERT_EQ(token.module().C_Finalize(nullptr), CKR_OK);
    EXPECT_EQ(kvFinalize(), ZVC_OK);
    EXPECT_EQ(kvFinalize(), ZVC_OK) << "nothing is open";
}

TEST_F(Session, PinRightWrongAndEmpty) {
    test::Token token(folder);
    token.release();
    EXPECT_EQ(kvLogin("secret-77"), ZVC_ERR_NO_SESSION);
    ASSERT_EQ(initialize(SOFTHSM_MODULE, token.slot()), ZVC_OK) << lastError();
    EXPECT_EQ(kvLogin("secret-77"), ZVC_ERR_PIN_INCORRECT);
    EXPECT_NE(lastError().find("PIN errato"), std::string::npos);
    EXPECT_EQ(lastError().find("secret-77"), std::string::npos);
    EXPECT_EQ(kvLogin(""), ZVC_ERR_PIN_EMPTY);
    EXPECT_EQ(kvLogin(nullptr), ZVC_ERR_ARGUMENT);
    EXPECT_EQ(kvLogin(test::userPin), ZVC_OK) << lastError();
    EXPECT_EQ(lastError(), "");
    EXPECT_EQ(kvLogin(test::userPin), ZVC_OK) << "logged in already";

    char label[80], manufacturer[48], model[32], serial[32];
    ASSERT_EQ(kvCheckSmartCard(label, manufacturer, model, serial), ZVC_OK) << lastError();
    EXPECT_STREQ(label, "card");
    EXPECT_EQ(std::strlen(serial), 16U);
    EXPECT_EQ(kvCheckSmartCard(label, manufacturer, nullptr, serial), ZVC_ERR_ARGUMENT);
}

TEST_F(Session, WhatIsNoModuleIsToldApart) {
    const std::string notAModule = write("text.so", "no library");
    for (const std::string& path :
         {std::string(), path("missing.so"), notAModule, std::string("libcrypto.so.3")}) {
        EXPECT_EQ(initialize(path, 0), ZVC_ERR_MODULE_LOAD) << path;
        EXPECT_NE(lastError().find("PKCS#11"), std::string::npos);
    }
}

TEST_F(Session, PinStatesHaveTheirOwnCodeAndSentence) {
    const std::tuple<Oddity, int, const char*> cases[] = {
        {ODD_PIN_LOCKED, ZVC_ERR_PIN_LOCKED, "PIN bloccato"},
        {ODD_PIN_EXPIRED, ZVC_ERR_PIN_EXPIRED, "PIN scaduto"},
        {ODD_FINAL_TRY, ZVC_ERR_PIN_INCORRECT, "Resta un solo tentativo"},
        {ODD_NOW_LOCKED, ZVC_ERR_PIN_INCORRECT, "Il PIN ora è bloccato"},
        {ODD_NO_LOGIN_ENTRY, ZVC_ERR_MODULE, "C_Login: 0x54"},
    };
    for (const auto& [oddity, code, sentence] : cases) {
        ASSERT_EQ(odd(oddity), ZVC_OK) << lastError();
        EXPECT_EQ(kvLogin("1"), code);
        EXPECT_NE(lastError().find(sentence), std::string::npos) << lastError();
    }
}

TEST_F(Session, TokenTextsAreBoundedWhateverTheirPadding) {
    char label[80], manufacturer[48], model[32], serial[32];
    ASSERT_EQ(odd(ODD_NUL_PADDED), ZVC_OK) << lastError();
    ASSERT_EQ(kvCheckSmartCard(label, manufacturer, model, serial), ZVC_OK) << lastError();
    EXPECT_EQ(label, std::string(32, 'L'));
    EXPECT_STREQ(manufacturer, "");
    EXPECT_STREQ(model, "model");
    EXPECT_STREQ(serial, "12050001");
    ASSERT_EQ(odd(ODD_FULL_SERIAL), ZVC_OK);
    ASSERT_EQ(kvCheckSmartCard(label, manufacturer, model, serial), ZVC_OK);
    EXPECT_EQ(serial, std::string(16, '9'));
    ASSERT_EQ(kvFinalize(), ZVC_OK);
    EXPECT_EQ(kvCheckSmartCard(label, manufacturer, model, serial), ZVC_ERR_NO_SESSION);
    EXPECT_STREQ(serial, "");
}

TEST_F(Session, AnswersThatAreNoneAreRefused) {
    EXPECT_EQ(odd(ODD_NO_TOKEN), ZVC_ERR_CARD_REMOVED);
    EXPECT_EQ(kvLogin("1"), ZVC_ERR_NO_SESSION) << "a failed opening leaves nothing open";
    EXPECT_EQ(odd(ODD_NULL_SESSION), ZVC_ERR_MODULE_ANSWER);
    ASSERT_EQ(odd(ODD_CLOSE_FAILS), ZVC_OK);
    EXPECT_EQ(kvFinalize(), ZVC_ERR_MODULE);
    EXPECT_EQ(kvFinalize(), ZVC_OK) << "closed all the same";
    ASSERT_EQ(odd(ODD_CARD_GONE), ZVC_OK);
    EXPECT_EQ(kvFinalize(), ZVC_OK);
    const std::string in = write("in", "text"), out = path("out");
    for (const auto& [oddity, code] : {std::pair{ODD_HUGE_COUNT, ZVC_ERR_MODULE_ANSWER},
                                       {ODD_ENDLESS_SEARCH, ZVC_ERR_MODULE_ANSWER},
                                       {ODD_LENGTHS, ZVC_ERR_CERTIFICATE}}) {
        ASSERT_EQ(odd(oddity), ZVC_OK);
        EXPECT_EQ(kvSignFile("DS0", "SHA256", in.c_str(), out.c_str()), code) << lastError();
        EXPECT_FALSE(std::filesystem::exists(out));
    }
}
