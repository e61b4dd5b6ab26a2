// Steps on a pending pair that fail: what is said, and that nothing else is done.
#include "card/session.h"
#include "tests/flows/flow.h"

namespace {

using namespace zvtest;

TEST_F(PendingFlow, RelabellingBackNamesTheCallThatFails) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"C_FindObjectsInit", "Errore nella inizializzazione della ricerca degli oggetti sulla scheda ("},
        {"C_FindObjects", "Errore nella della ricerca degli oggetti sulla scheda ("},
        {"C_SetAttributeValue", "Errore modifica LABEL/ID oggetti presenti su scheda ("},
        {"C_FindObjectsFinal", "Errore nella chiusura della ricerca degli oggetti sulla scheda ("}};
    for (const auto& [function, sentence] : cases) {
        std::string pin = PIN, library = path(), same = "DS3";
        ASSERT_EQ(__Initialize(0, pin.data(), library.data()), CKR_OK);
        log.clear();
        module.add_rules(function + ":1:answer:0x30");
        EXPECT_EQ(RechangeValueObject(nullptr, same.c_str(), same.data()), 1) << function;
        EXPECT_TRUE(has(log.text(), function + "\nErrore = 0x48\n** Messaggio di Errore\n" + sentence))
            << log.text();
        finalizza();
    }
    EXPECT_EQ(objects(), before);
}

TEST_F(PendingFlow, CertificateIsNotStoredForAPairThatKeepsItsName) {
    module.add_rules("C_SetAttributeValue:1:answer:0x30");
    EXPECT_EQ(save(certificate, true, "DS0", "DS3"), 1);
    EXPECT_TRUE(has(log.text(), "C_SetAttributeValue\nErrore = 0x48\n** Messaggio di Errore\n"
                                "Errore modifica LABEL/ID oggetti presenti su smartcard ("));
    EXPECT_TRUE(has(log.text(), "ChangeValueObject\nErrore = 0x1\n"));
    EXPECT_EQ(module.calls("C_CreateObject"), 0U);
    EXPECT_EQ(objects(), before);
}

TEST_F(PendingFlow, SecondSignatureNeedsThePairAgain) {
    module.add_rules("C_Sign:1:answer:0x101;C_Login:2:answer:0x30");
    EXPECT_EQ(request(), 1);
    EXPECT_STREQ(szSockMsg,
                 "Errore nella ricerca delle chiavi pending generate sulla smartcard (per SignIt error 64)")
        << "without a login the private key is not seen";
    EXPECT_EQ(module.calls("C_Sign"), 1U);
    EXPECT_EQ(objects(), before);
    for (const char* id : {"DS3", "DS4"}) { // a pair that was found, one that is made
        module.add_rules("C_Sign:1:answer:0x101;C_Login:2:do-and-answer:0x30");
        EXPECT_EQ(request(id), 0) << szSockMsg;
    }
}

} // namespace
