// What a reading and a search for free identifiers give back, and what they do when card, PIN or module fail.
#include "card/detection.h"
#include "inventory/certificates.h"
#include "routines/card.h"
#include "routines/inventory.h"
#include "simcard/common/card_folder.h"
#include "simcard/tool/personalise.h"
#include "tests/flows/flow.h"

#include <unistd.h>

namespace {

using namespace zvtest;
using Lines = std::vector<std::string>;

TEST_F(Flow, NullArgumentsAreSkipped) {
    std::string pin = PIN;
    char *entries[ZV_LIST_ENTRIES] = {}, **none = nullptr;
    for (char** list : {none, entries})
        EXPECT_EQ(rinnovo_Card_readCerts(nullptr, pin.data(), 0, list, list, list, nullptr, nullptr, nullptr,
                                         nullptr, nullptr, nullptr, module_dir().c_str()),
                  0);
    EXPECT_EQ(rinnovo_Card_findFreeCKAID(nullptr, pin.data(), nullptr, nullptr), 0);
    EXPECT_EQ(rinnovo_Card_readCerts(nullptr, nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr,
                                     nullptr, nullptr, nullptr, nullptr, nullptr),
              -1)
        << "no module without a directory";
}

TEST_F(Flow, OneTypingErrorCostsOneTry) {
    const Reading reading = read("0000");
    EXPECT_EQ(reading.result, static_cast<int>(CKR_PIN_INCORRECT));
    EXPECT_EQ(tries_left(), 2);
    EXPECT_STREQ(szBuffErr, "");
    const std::string text = log.text();
    EXPECT_TRUE(has(text, "[]: Funzione 'renewDump': errore dump Smart Card\n"
                          "[]: Operazione non inviata: il PIN e' gia' stato rifiutato\n"
                          "[]: MESSAGGIO VUOTO!\n[]: Smart Card NON CNS: (int)__Initialize() error!\n"
                          "**  .... Finalizza FUN"));
    EXPECT_FALSE(has(log.raw(), "0000\n"));
    EXPECT_EQ(read().result, 0);
    EXPECT_EQ(tries_left(), 3);
}

TEST_F(Flow, ALockedPinIsNotTriedTwice) {
    for (int i = 0; i < 3; ++i)
        read("wrong");
    EXPECT_EQ(tries_left(), 0);
    module.reset();
    EXPECT_EQ(read().result, static_cast<int>(CKR_PIN_LOCKED));
    EXPECT_EQ(module.calls("C_Login"), 1u);
    EXPECT_EQ(objects().size(), 7u);
}

TEST_F(Flow, CardsAndReadersThatAreNotThere) {
    std::string pra, aut;
    EXPECT_NE(read(PIN, "No Such Reader").result, 0);
    EXPECT_STRNE(szBuffErr, "");
    simcard::take_out_card(card.folder);
    EXPECT_EQ(read().result, -1);
    EXPECT_TRUE(has(log.text(), "CheckSmartCard getSlot fallita"));
    EXPECT_EQ(find_free(pra, aut), -1);
    simcard::put_back_card(card.folder);
    EXPECT_EQ(read().result, 0);
    ::setenv("PCSCLITE_CSOCK_NAME", "/nonexistent/pcscd.comm", 1);
    ::setenv("ZVCRYPT_CONF", "/dev/null", 1);
    EXPECT_EQ(read(PIN, nullptr).result, static_cast<int>(ZVC_ERR_NO_SERVICE));
    EXPECT_STRNE(szBuffErr, "");
    ::unsetenv("PCSCLITE_CSOCK_NAME");
}

TEST_F(Flow, AnUnknownCardIsNotSupported) {
    const auto conf = log.folder() / "conf";
    std::ofstream(conf) << "[reader R]\natr = 3B00FFEEDD\n";
    ::setenv("ZVCRYPT_CONF", conf.c_str(), 1);
    EXPECT_EQ(read(PIN, "R").result, 100);
    EXPECT_STREQ(szBuffErr, "Tipo di Smart Card non supportato");
    std::string pra, aut;
    szBuffErr[0] = '\0';
    EXPECT_EQ(find_free(pra, aut), 100);
    EXPECT_STREQ(szBuffErr, "Tipo di Smart Card non supportato");
    EXPECT_TRUE(
        has(log.text(), "[]: Tipo di Smart Card non supportato\n[]: Funzione CheckSmartCard() error!\n"));
    std::ofstream(log.folder() / "atr.ini") << "[card C]\natr = 3B00FFEEDD\nmodule = libzvsimcard.so\n";
    set_ATRini_path(log.folder().c_str());
    EXPECT_EQ(read(PIN, "R").result, -1) << "the host's table names a module, which has no such reader";
    set_ATRini_path(nullptr);
}

TEST_F(Flow, AModuleThatAnswersOddlyIsLivedWith) {
    module.add_rules("C_Initialize:3:answer:0x191");
    EXPECT_EQ(read().result, 0) << "initialised already is no failure";
    module.reset();
    module.add_rules("C_Login:2:do-and-answer:0x100;C_Login:3:do-and-answer:0x100");
    EXPECT_EQ(read().result, 0) << "logged in already is none either";
    for (const char* rule : {"C_GetSlotInfo:2:answer:0x30", "C_FindObjects:12:answer:0x30",
                             "C_FindObjectsInit:2:answer:0x30", "C_FindObjectsFinal:1:answer:0x30"}) {
        module.reset();
        log.clear();
        module.add_rules(rule);
        EXPECT_EQ(read().result, -1) << rule;
        EXPECT_TRUE(has(log.text(), "Errore = 0x48\n")) << rule;
        EXPECT_EQ(zv::numCertificate == 0, has(rule, "Init")) << rule;
        EXPECT_TRUE(has(log.text(), "[]: Smart Card NON CNS: NewFind_ALL_CertsKeysRenew() error!\n")) << rule;
    }
}

TEST_F(Flow, FreeIdentifiersFollowTheCard) {
    ASSERT_EQ(read().result, 0);
    std::string pra, aut;
    ASSERT_EQ(find_free(pra, aut), 0);
    EXPECT_EQ(pra, "DS3");
    EXPECT_EQ(aut, "AUTHCertificate3");
    EXPECT_FALSE(use2048Bit);
    EXPECT_TRUE(has(log.text(),
                    "[]: ---------------------------------\n[]: Free CKAID:\n[]: DS3\n[]: AUTHCertificate3\n"
                    "[]: ---------------------------------\n"
                    "[]: Funzione 'rinnovo_Card_findFreeCKAID()' completata con successo!\n"));
    ASSERT_EQ(request("DS4"), 0);
    ASSERT_EQ(request_authentication("AUTHCertificate5", "AUTHCertificate0"), 0);
    ASSERT_EQ(find_free(pra, aut), 0);
    EXPECT_EQ(pra, "DS4") << "a pending pair";
    EXPECT_EQ(aut, "AUTHCertificate5");
    const Reading reading = read();
    EXPECT_EQ(reading.pending_pra + reading.pending_aut, 1)
        << "an inventory reports the first pending pair alone";
    EXPECT_EQ(reading.key_pra, "DS4");
    EXPECT_TRUE(reading.pra[0].ends_with("#DS4"));
    EXPECT_TRUE(reading.aut[0].ends_with("#AUTHCertificate3")) << reading.aut[0];
}

TEST_F(Flow, ANullArgumentChangesNothingInTheOthers) {
    ASSERT_EQ(read().result, 0);
    ASSERT_EQ(request("DS4"), 0);
    std::string pin = PIN, library = path();
    ASSERT_EQ(__Initialize(0, pin.data(), library.data()), CKR_OK);
    char signature[ZV_KEY_ID_SIZE], entries[ZV_LIST_ENTRIES][ZV_LIST_ENTRY_SIZE] = {};
    char* list[ZV_LIST_ENTRIES];
    for (int i = 0; i < ZV_LIST_ENTRIES; ++i)
        list[i] = entries[i];
    EXPECT_EQ(Find_ALL_Pending(nullptr, nullptr, signature, nullptr), 0);
    EXPECT_STREQ(signature, "DS4") << "pending, though nobody asked for the flag";
    EXPECT_EQ(NewFind_ALL_CertsKeysRenew(list, nullptr, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0,
                                         nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
              0);
    EXPECT_TRUE(has(entries[0], "1") && std::string(entries[1]).ends_with("#DS4")) << entries[1];
    EXPECT_EQ(NewFind_ALL_CertsKeysRenewCNS(nullptr, nullptr, nullptr, nullptr, 0, nullptr, 0, nullptr, 0,
                                            nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                            nullptr, nullptr, false),
              0);
    finalizza();
}

TEST_F(Flow, WhatStandsBehindTenOthersCounts) {
    add(Lines(10, "Korvalenta Firma Dig"), Lines(10, "DS1x"));
    ASSERT_EQ(read().result, 0);
    ASSERT_EQ(request(), 0);
    Reading reading = read();
    EXPECT_EQ(reading.pending_pra, 1) << "the thirteenth public key waits";
    ASSERT_EQ(save(issue(), true), 0);
    std::string pra, aut;
    ASSERT_EQ(find_free(pra, aut), 0);
    EXPECT_EQ(pra, "DS4") << "the pair DS3 neither waits nor is free";
    EXPECT_TRUE(use2048Bit);
    reading = read();
    EXPECT_EQ(reading.pending_pra, 0);
    EXPECT_EQ(fields(reading.pra.at(1))[7], "DS3");
    add(Lines(12, "DS9"));
    EXPECT_EQ((reading = read()).pra.size() + reading.aut.size(), 10u);
}

TEST_F(Flow, AFullSeriesHasNoFreeIdentifier) {
    ASSERT_EQ(read().result, 0);
    for (const char* id : {"DS3", "DS4", "DS5"}) {
        ASSERT_EQ(request(id), 0);
        ASSERT_EQ(save(issue(), true, "DS0", id), 0);
    }
    std::string pra, aut;
    EXPECT_EQ(find_free(pra, aut), 1);
    EXPECT_EQ(pra, "DS");
    EXPECT_EQ(aut, "");
    EXPECT_TRUE(use2048Bit);
    EXPECT_TRUE(has(log.text(), "[]: Funzione findFreeCKAID() error!\n"));
    const Reading reading = read();
    EXPECT_EQ(reading.result, 0);
    EXPECT_EQ(reading.key_pra, "DS");
    EXPECT_EQ(reading.key_aut, "");
}

TEST_F(Flow, AModuleThatIsStartedAlreadyIsStartedAnew) {
    module.add_rules("C_Initialize:1:answer:0x191");
    EXPECT_EQ(read().result, 0);
    EXPECT_EQ(module.rules_left(), 0U);
    module.add_rules("C_Initialize:1:answer:0x191;C_Initialize:2:answer:0x5");
    EXPECT_EQ(read().result, -1) << "once";
}

TEST_F(OpenFlow, FullOpenerIsStricterThanTheLightOne) {
    std::string pin = PIN, wrong = "0", none, library = path();
    EXPECT_EQ(inizializza(library.data(), wrong.data(), 0, nullptr, CKU_USER), 2);
    EXPECT_STREQ(szSockMsg, "") << "the caller words a wrong PIN";
    module.add_rules("C_Login:1:do-and-answer:0x100");
    EXPECT_EQ(inizializza(library.data(), pin.data(), 0, nullptr, CKU_USER), 1);
    EXPECT_STREQ(szSockMsg,
                 "Errore nel login alla smartcard (La smartcard ha gia' un login in corso. Ripetere "
                 "l'operazione)");
    module.add_rules("C_Initialize:1:do-and-answer:0x191");
    EXPECT_EQ(inizializza(library.data(), pin.data(), 0, nullptr, CKU_USER), 1);
    EXPECT_STREQ(szSockMsg,
                 "Errore nella inizializzazione della libreria di gestione della smartcard (Libreria "
                 "crittografica non finalizzata. Ripetere l'operazione)");
    module.add_rules("C_OpenSession:1:answer:0xE0");
    log.clear();
    EXPECT_EQ(inizializza(library.data(), pin.data(), 0, nullptr, CKU_USER), 1);
    EXPECT_TRUE(
        std::string(szSockMsg).starts_with("Errore aprendo la sessione con la smartcard (Nessuna smartcard"));
    EXPECT_TRUE(has(log.text(),
                    "** Messaggio di Errore\nErrore aprendo la sessione con la smartcard.\r\nIntrodurre "
                    "correttamente la smartcard nel lettore e riprovare\n"));
    EXPECT_EQ(inizializza(library.data(), none.data(), 0, nullptr, CKU_USER), 0);
}

} // namespace
