#include "card/detection.h"
#include "card/session.h"
#include "routines/card.h"
#include "store/objects.h"
#include "tests/support/log_file.h"

#include <gtest/gtest.h>

namespace {

constexpr CK_RV UNUSABLE = ~CK_RV{0};

std::string odd(const std::string& name) {
    return std::string(ODD_MODULES) + "/odd_" + name + ".so";
}

CK_RV open_light(std::string path, int slot = 3) {
    char pin[] = "";
    return __Initialize(slot, pin, path.data());
}

int open_full(std::string path, unsigned index = 0) {
    char pin[] = "";
    return inizializza(path.data(), pin, index, nullptr, CKU_USER);
}

class OddModule : public testing::Test {
  protected:
    OddModule() {
        loadErrorCodes();
        finalizza();
        std::fill(std::begin(zv::vettoreSlotID), std::end(zv::vettoreSlotID), 0);
        zv::rv = CKR_OK;
        szSockMsg[0] = '\0';
        log.clear();
    }
    ~OddModule() override { finalizza(); }
    zvtest::LogFile log;
};

TEST_F(OddModule, BlankAndEmptyPathsLoadNothing) {
    EXPECT_EQ(open_light(" /x"), UNUSABLE);
    EXPECT_EQ(log.text(), "** INIZIALIZZA_FUN\nSlotNum = 0x3\n\n");
    EXPECT_EQ(zv::slotID, 3u);
    EXPECT_EQ(open_light("", -48), UNUSABLE);
    EXPECT_EQ(zv::slotID, static_cast<CK_SLOT_ID>(-48L));
    EXPECT_EQ(zv::hModule, nullptr) << "an empty path would open this very program";
    EXPECT_EQ(open_full(""), 1);
    EXPECT_STREQ(szSockMsg, "Errore nel caricamento della libreria di gestione della smartcard\n (error )");
}

TEST_F(OddModule, WithoutAFunctionListIsUnusable) {
    for (const char* name : {"no_list_function", "null_list", "failed_list"}) {
        log.clear();
        EXPECT_EQ(open_light(odd(name)), UNUSABLE) << name;
        EXPECT_NE(log.text().find("GetProcAddress\nRet Code = 0x-1\n"), std::string::npos) << name;
        EXPECT_EQ(zv::call<&zv::Functions::C_Initialize>(nullptr), CKR_CRYPTOKI_NOT_INITIALIZED) << name;
        finalizza();
    }
    char reader[] = "DDD";
    EXPECT_EQ(getSlot(reader, odd("null_list").data()), 0xFFFFFFFFu);
}

TEST_F(OddModule, FullOpenerWordsTheMissingListInTwoWays) {
    EXPECT_EQ(open_full(odd("no_list_function")), 1);
    EXPECT_STREQ(szSockMsg,
                 "Errore nel caricamento delle funzioni dalla libreria di gestione della smartcard (error )");
    EXPECT_EQ(log.text().find("Messaggio di Errore"), std::string::npos);
    zv::rv = CKR_PIN_LOCKED;
    EXPECT_EQ(open_full(odd("null_list")), 1);
    EXPECT_NE(log.text().find(
                  "pC_GetFunctionList\nErrore = 0x164\n** Messaggio di Errore\nErrore nella lista delle"),
              std::string::npos)
        << "the code is the one left over from before";
}

TEST_F(OddModule, ListOfAnEarlierModuleIsNotUsed) {
    open_light(odd("absurd"));
    ASSERT_NE(zv::p, nullptr);
    const CK_FUNCTION_LIST* older = zv::p;
    finalizza();
    EXPECT_EQ(zv::p, older);
    EXPECT_EQ(zv::call<&zv::Functions::C_Finalize>(nullptr), CKR_CRYPTOKI_NOT_INITIALIZED);
    open_light(odd("null_list"));
    EXPECT_EQ(zv::call<&zv::Functions::C_Finalize>(nullptr), CKR_CRYPTOKI_NOT_INITIALIZED);
}

TEST_F(OddModule, NullEntriesAnswerNotSupported) {
    EXPECT_EQ(open_light(odd("empty_list")), CKR_FUNCTION_NOT_SUPPORTED);
    EXPECT_EQ(open_full(odd("empty_list")), 1);
    EXPECT_STREQ(szSockMsg,
                 "Errore nella inizializzazione della libreria di gestione della smartcard (Funzione "
                 "richiesta non supportata dalla libreria crittografica)");
    char reader[] = "DDD";
    EXPECT_EQ(getSlot(reader, odd("empty_list").data()), 0xFFFFFFFFu);
}

TEST_F(OddModule, DescriptionThatRunsOnIsCutAndASecondCountIsNotBelieved) {
    std::string whole(64, 'D'), shorter(62, 'D');
    EXPECT_EQ(getSlot(whole.data(), odd("absurd").data()), 7u);
    EXPECT_EQ(getSlot(shorter.data(), odd("absurd").data()), 0xFFFFFFFFu);
}

TEST_F(OddModule, SlotIndicesBeyondListAndCacheAreRefused) {
    for (const unsigned index : {1u, 8u, 0xFFFFFFD0u}) {
        EXPECT_EQ(open_full(odd("absurd"), index), 1) << index;
        EXPECT_EQ(std::string(szSockMsg).rfind("Errore nella ricerca slots (", 0), 0u) << index;
    }
    EXPECT_EQ(open_full(odd("absurd"), 0), 0) << "no login is asked for with an empty PIN";
    EXPECT_EQ(zv::vettoreSlotID[0], 7u);
    log.clear();
    EXPECT_EQ(open_full(odd("absurd"), 0), 0);
    EXPECT_EQ(log.text().find("C_GetSlotList"), std::string::npos) << "the slot is known";
}

TEST(AtrDirectory, TakesAPathThatFits) {
    for (const auto& [path, length] : {std::pair{1023U, 1023U}, {0U, 0U}, {1023U, 1023U}, {1024U, 0U}}) {
        set_ATRini_path(std::string(path, 'x').c_str());
        EXPECT_EQ(std::strlen(zv::g_ATRINI_dir), length);
    }
    set_ATRini_path("/dir");
    set_ATRini_path(nullptr);
    EXPECT_STREQ(zv::g_ATRINI_dir, "");
}

} // namespace
