// Storing: the certificate and its pair, and what is on the card when it is refused.
#include "tests/flows/flow.h"

namespace {

using namespace zvtest;

class Storing : public PendingFlow {};

TEST_F(Storing, CertificateIsWrittenWithNineAttributes) {
    module.record();
    ASSERT_EQ(save(certificate, true), 0);
    const std::string line = calls_of("C_CreateObject", module.recorded()).at(0);
    EXPECT_TRUE(has(line, "pTemplate={CKA_CLASS 8 0100000000000000, CKA_TOKEN 1 01, CKA_CERTIFICATE_TYPE 8 "
                          "0000000000000000, CKA_ID 3 445333, CKA_LABEL 3 445333, CKA_VALUE "))
        << line;
    EXPECT_TRUE(has(line, "CKA_SUBJECT ") && has(line, "CKA_ISSUER ") && has(line, "CKA_SERIAL_NUMBER "))
        << line;
    EXPECT_TRUE(pair_works("DS3") && pair_works("DS0"));
    EXPECT_EQ(objects().size(), before.size() + 1);
    const Reading after = read();
    EXPECT_EQ(after.pra.size(), 2u);
    EXPECT_EQ(after.pending_pra, 0);
}

TEST_F(Storing, CertificateOfAnotherKeyIsRefusedAndThePairStays) {
    request_text.clear();
    ASSERT_EQ(request_authentication("AUTHCertificate3", "AUTHCertificate0"), 0);
    const std::string other = issue();
    before = objects();
    log.clear();
    EXPECT_EQ(save(other, true), 1);
    EXPECT_STREQ(szBuffErr, "Errore nella mininfo");
    EXPECT_TRUE(has(log.text(),
                    "C_CreateObject\nCertificato non corrispondente alle chiavi presenti sulla smartcard\n"));
    EXPECT_TRUE(
        has(log.text(),
            "** Messaggio di Errore\nIl certificato non corrisponde alla coppia di chiavi presente sulla "
            "smartcard\n"));
    EXPECT_TRUE(has(log.text(), "**  .... RechangeValueObject FUN        .... \nF I N E\nLabel = DS3\n"));
    EXPECT_EQ(objects(), before);
    EXPECT_EQ(save(certificate, true), 0) << "the right one is still taken";
}

TEST_F(Storing, ATextThatIsNoCertificateTouchesNothing) {
    EXPECT_EQ(save("", false), 1);
    EXPECT_EQ(save("no certificate", true), 1);
    EXPECT_TRUE(has(log.text(),
                    "** Messaggio di Errore\nErrore nella scansione del certificato da memorizzare sulla "
                    "smartcard\n"));
    EXPECT_EQ(objects(), before);
}

TEST_F(Storing, WithoutAPendingPairNothingIsWritten) {
    EXPECT_EQ(save(certificate, true, "DS0", "DS4"), 1);
    EXPECT_TRUE(
        has(log.text(),
            "Chiave Pending Non trovata\n\n** Messaggio di Errore\nNon esiste alcuna chiave privata da "
            "certificare sulla smartcard (Operazione completata con successo)\n"));
    EXPECT_TRUE(has(log.text(), "CheckPendingKeys\nErrore = 0x100\n"));
    EXPECT_EQ(objects(), before);
}

TEST_F(Storing, AModuleThatDoesNotReadKeysIsTrusted) {
    module.add_rules("C_GetAttributeValue:16:answer:0x6");
    module.record();
    ASSERT_EQ(save(certificate, true), 0) << module.recorded();
    EXPECT_TRUE(has(log.text(),
                    "**  .... InstallUserCertificate FUN     .... \nC_GetAttributeValue\nErrore = 0x6\n"));
}

TEST_F(Storing, EmptyAndBlankLabelsBecomeTheFirstOnesInTheHostsBuffer) {
    std::string pin = PIN, pending = "DS3";
    char label[16] = "   ";
    ASSERT_EQ(rinnovo_Card_saveCertPRA(pin.data(), label, pending.data(), certificate.data(), true), 0);
    EXPECT_STREQ(label, "DS0");
    char authentication[32] = "";
    rinnovo_Card_saveCertAUT(pin.data(), authentication, pending.data(), certificate.data(), true);
    EXPECT_STREQ(authentication, "AUTHCertificate0");
    EXPECT_EQ(rinnovo_Card_saveCertPRA(nullptr, nullptr, nullptr, nullptr, true), -10000);
}

} // namespace
