#include "tests/simcard/objects.h"
#include "tests/support/process.h"

#include <algorithm>
#include <csignal>
#include <fstream>
#include <iterator>

using namespace zvtest;

namespace {

class Control : public EmptyCard {
  protected:
    CK_RV seed() {
        CK_BYTE byte = 1;
        return module->C_SeedRandom(session, &byte, 1);
    }
};

// The second of two initialisations of a program that loads the module for each; the first if that fails.
CK_RV second_initialisation() {
    CK_RV result = CKR_OK;
    for (int round = 0; round < 2 && result == CKR_OK; ++round) {
        const pkcs11::Module loaded(ZVSIMCARD_MODULE);
        result = loaded.list()->C_Initialize(nullptr);
        loaded.list()->C_Finalize(nullptr);
    }
    return result;
}

} // namespace

TEST_F(Control, AnswersTheCallsItIsToldTo) {
    ASSERT_EQ(module.add_rules("C_SeedRandom:2:answer:0x30\nC_SeedRandom:4+:answer:6"), 0);
    const CK_RV wanted[] = {CKR_OK, CKR_DEVICE_ERROR, CKR_OK, CKR_FUNCTION_FAILED, CKR_FUNCTION_FAILED};
    for (const CK_RV answer : wanted)
        EXPECT_EQ(seed(), answer);
    module.reset();
    ASSERT_EQ(module.add_rules("*:2:answer:0x5"), 0);
    EXPECT_EQ(seed(), CKR_OK);
    EXPECT_EQ(module.rules_left(), 1U);
    EXPECT_EQ(seed(), CKR_GENERAL_ERROR);
    EXPECT_EQ(module.rules_left(), 0U);
    EXPECT_EQ(module.calls("C_SeedRandom"), 2U);
    EXPECT_EQ(module.calls(), 2U);
}

TEST_F(Control, DoesTheCallOrNotBeforeItAnswers) {
    ASSERT_EQ(module.add_rules("C_CreateObject:1:answer:0x31; C_CreateObject:2:do-and-answer:0x32"), 0);
    CK_RV result = CKR_OK;
    static_cast<void>(store(module, session, "first", &result));
    EXPECT_EQ(result, CKR_DEVICE_MEMORY);
    static_cast<void>(store(module, session, "second", &result));
    EXPECT_EQ(result, CKR_DEVICE_REMOVED);
    EXPECT_EQ(labels(module, session), "second ");
}

TEST_F(Control, RefusesRulesItDoesNotUnderstand) {
    for (const char* bad :
         {"C_Nothing:1:answer:5", "C_Login:0:answer:5", "C_Login:x:answer:5", "C_Login:1:answer",
          "C_Login:1:answer:0x", "C_Login:1:absurd:size", "C_Login:1:kill-before:3", "C_Login:1",
          "C_Login:1:sing", "C_Login:1:take-out:x", "C_Login:-1:answer:5"})
        EXPECT_EQ(module.add_rules(bad), 1) << bad;
    EXPECT_EQ(module.add_rules("*:*:answer:5; nonsense"), 2);
    EXPECT_EQ(seed(), CKR_OK);
    EXPECT_EQ(module.add_rules(" ; \n"), 0);
}

TEST_F(Control, OutlivesTheFinalisation) {
    ASSERT_EQ(module.add_rules("C_OpenSession:1:answer:0xE0"), 0);
    ASSERT_EQ(module->C_Finalize(nullptr), CKR_OK);
    EXPECT_EQ(seed(), CKR_CRYPTOKI_NOT_INITIALIZED);
    ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
    EXPECT_EQ(module.open(), 0U);
    EXPECT_EQ(module.calls("C_SeedRandom"), 1U);
}

TEST_F(Control, GivesAbsurdLengthsWithoutWritingPastTheBuffer) {
    const auto object = store(module, session, "label");
    char room[8] = "-------";
    CK_ATTRIBUTE entry{CKA_LABEL, room, 5};
    ASSERT_EQ(
        module.add_rules("C_GetAttributeValue:1:absurd:length; C_GetAttributeValue:2:absurd:unavailable;"
                         "C_GetAttributeValue:3:absurd:text; C_FindObjects:1:absurd:count;"
                         "C_Digest:1:absurd:length"),
        0);
    for (const CK_ULONG length : {5UL + 4096, CK_UNAVAILABLE_INFORMATION, 5UL}) {
        entry.ulValueLen = 5;
        EXPECT_EQ(module->C_GetAttributeValue(session, object, &entry, 1), CKR_OK);
        EXPECT_EQ(entry.ulValueLen, length);
    }
    EXPECT_EQ(std::string(room), "XXXXX--");

    CK_OBJECT_HANDLE found[2] = {0, 77};
    CK_ULONG count = 0;
    ASSERT_EQ(module->C_FindObjectsInit(session, nullptr, 0), CKR_OK);
    EXPECT_EQ(module->C_FindObjects(session, found, 1, &count), CKR_OK);
    EXPECT_EQ(count, 0x7FFFFFFFU);
    EXPECT_EQ(found[0], object);
    EXPECT_EQ(found[1], 77U);
    ASSERT_EQ(module->C_FindObjectsFinal(session), CKR_OK);

    CK_MECHANISM sha{CKM_SHA_1, nullptr, 0};
    CK_BYTE digest[20];
    CK_ULONG length = sizeof digest;
    ASSERT_EQ(module->C_DigestInit(session, &sha), CKR_OK);
    EXPECT_EQ(module->C_Digest(session, digest, 4, digest, &length), CKR_OK);
    EXPECT_EQ(length, 20U + 4096);
}

TEST_F(Control, GivesTextsWithoutAnEnd) {
    ASSERT_EQ(module.add_rules("*:*:absurd:text"), 0);
    CK_SLOT_INFO slot{};
    CK_TOKEN_INFO token{};
    CK_INFO info{};
    ASSERT_EQ(module->C_GetSlotInfo(0, &slot), CKR_OK);
    ASSERT_EQ(module->C_GetTokenInfo(0, &token), CKR_OK);
    ASSERT_EQ(module->C_GetInfo(&info), CKR_OK);
    EXPECT_EQ(std::count(std::begin(slot.slotDescription), std::end(slot.slotDescription), 'X'), 64);
    EXPECT_EQ(std::count(std::begin(token.serialNumber), std::end(token.serialNumber), 'X'), 16);
    EXPECT_EQ(std::count(std::begin(info.libraryDescription), std::end(info.libraryDescription), 'X'), 32);
}

TEST_F(Control, RecordsCallsButNoSecrets) {
    module.record();
    const auto object = store(module, session, "A");
    ASSERT_EQ(object, 1001U);
    EXPECT_EQ(read(module, session, object, CKA_ID), "?");
    EXPECT_EQ(read(module, session, object, CKA_LABEL), "A");
    module->C_Logout(session);
    EXPECT_EQ(module.login(session, "98765"), CKR_PIN_INCORRECT);
    module.record(false);
    EXPECT_EQ(seed(), CKR_OK);
    EXPECT_EQ(
        module.recorded(),
        "C_CreateObject hSession=1 pTemplate={CKA_CLASS 8 0000000000000000, CKA_TOKEN 1 01, CKA_LABEL 1 41, "
        "CKA_PRIVATE 1 00} "
        "ulCount=4 phObject=1001 -> 0x0\n"
        "C_GetAttributeValue hSession=1 hObject=1001 pTemplate={CKA_ID 512>18446744073709551615} ulCount=1 "
        "-> 0x12\n"
        "C_GetAttributeValue hSession=1 hObject=1001 pTemplate={CKA_LABEL 512>1 41} ulCount=1 -> 0x0\n"
        "C_Logout hSession=1 -> 0x0\n"
        "C_Login hSession=1 userType=1 -> 0xa0\n");
    char some[16];
    EXPECT_GT(module.function<decltype(&zvsimcard_recorded)>("zvsimcard_recorded")(some, sizeof some), 100U);
    EXPECT_STREQ(some, "C_CreateObject ");

    CK_OBJECT_HANDLE key = 0;
    std::string exponent = "private";
    CK_ATTRIBUTE entry = attribute(CKA_PRIVATE_EXPONENT, exponent);
    module.record();
    EXPECT_NE(module->C_CreateObject(session, &entry, 1, &key), CKR_OK);
    EXPECT_NE(module.recorded().find("CKA_PRIVATE_EXPONENT 7} ulCount=1 -> "), std::string::npos);
}

TEST(ControlOfAProgram, CountsOverItsWholeRun) {
    EmptyCards cards;
    cards.add();
    const auto run = [] { return in_child(second_initialisation).code; };
    ::setenv("ZVSIMCARD_RULES", "C_Initialize:2:answer:0x31", 1);
    EXPECT_EQ(run(), 0x31);
    ::setenv("ZVSIMCARD_RULES", "C_Initialize:2:wrong", 1);
    EXPECT_EQ(run(), 0x5);
    ::unsetenv("ZVSIMCARD_RULES");
    EXPECT_EQ(run(), 0);
}

TEST(ControlOfAProgram, KillsItBeforeOrAfterACall) {
    EmptyCards cards;
    cards.add();
    const auto trace = cards.path() / "trace";
    ::setenv("ZVSIMCARD_TRACE", trace.c_str(), 1);
    const auto run = [](const char* rule) {
        ::setenv("ZVSIMCARD_RULES", rule, 1);
        return in_child([] {
                   Module module;
                   module->C_Initialize(nullptr);
                   const auto session = module.open();
                   module.login(session, USER_PIN);
                   store(module, session, "stored");
                   return 0;
               })
            .signal;
    };
    const int before = run("C_CreateObject:1:kill-before");
    ::unsetenv("ZVSIMCARD_TRACE");
    const int after = run("C_CreateObject:1:kill-after");
    ::unsetenv("ZVSIMCARD_RULES");
    EXPECT_EQ(before, SIGKILL);
    EXPECT_EQ(after, SIGKILL);
    std::ifstream file(trace);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 5);
    EXPECT_TRUE(text.ends_with("ulCount=4 -> killed\n"));

    Module module;
    ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
    const auto session = module.open();
    ASSERT_EQ(module.login(session, USER_PIN), CKR_OK);
    EXPECT_EQ(labels(module, session), "stored ");
}
