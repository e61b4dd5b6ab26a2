// Installing: the certificate and its pair, what is on the card when it is refused, and single steps.
#include "card/session.h"
#include "install/certificate.h"
#include "install/certificate_object.h"
#include "install/label.h"
#include "routines/card.h"
#include "routines/install.h"
#include "tests/flows/flow.h"

#include <openssl/x509.h>

#include <algorithm>

namespace {

using namespace zvtest;

class Install : public PendingFlow {};

TEST_F(Install, CertificateIsWrittenWithNineAttributes) {
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

TEST_F(Install, CertificateOfAnotherKeyIsRefusedAndThePairStays) {
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

TEST_F(Install, ATextThatIsNoCertificateTouchesNothing) {
    EXPECT_EQ(save("", false), 1);
    EXPECT_EQ(save("no certificate", true), 1);
    EXPECT_TRUE(has(log.text(),
                    "** Messaggio di Errore\nErrore nella scansione del certificato da memorizzare sulla "
                    "smartcard\n"));
    EXPECT_EQ(objects(), before);
}

TEST_F(Install, WithoutAPendingPairNothingIsWritten) {
    EXPECT_EQ(save(certificate, true, "DS0", "DS4"), 1);
    EXPECT_TRUE(
        has(log.text(),
            "Chiave Pending Non trovata\n\n** Messaggio di Errore\nNon esiste alcuna chiave privata da "
            "certificare sulla smartcard (Operazione completata con successo)\n"));
    EXPECT_TRUE(has(log.text(), "CheckPendingKeys\nErrore = 0x100\n"));
    EXPECT_EQ(objects(), before);
}

TEST_F(Install, AModuleThatDoesNotReadKeysIsTrusted) {
    module.add_rules("C_GetAttributeValue:16:answer:0x6");
    module.record();
    ASSERT_EQ(save(certificate, true), 0) << module.recorded();
    EXPECT_TRUE(has(log.text(),
                    "**  .... InstallUserCertificate FUN     .... \nC_GetAttributeValue\nErrore = 0x6\n"));
}

TEST_F(Install, EmptyAndBlankLabelsBecomeTheFirstOnesInTheHostsBuffer) {
    std::string pin = PIN, pending = "DS3";
    char label[16] = "   ";
    ASSERT_EQ(rinnovo_Card_saveCertPRA(pin.data(), label, pending.data(), certificate.data(), true), 0);
    EXPECT_STREQ(label, "DS0");
    char authentication[32] = "";
    rinnovo_Card_saveCertAUT(pin.data(), authentication, pending.data(), certificate.data(), true);
    EXPECT_STREQ(authentication, "AUTHCertificate0");
    EXPECT_EQ(rinnovo_Card_saveCertPRA(nullptr, nullptr, nullptr, nullptr, true), -10000);
}

TEST_F(Install, RelabellingBackNamesTheCallThatFails) {
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

TEST_F(Install, CertificateIsNotWrittenForAPairThatKeepsItsName) {
    module.add_rules("C_SetAttributeValue:1:answer:0x30");
    EXPECT_EQ(save(certificate, true, "DS0", "DS3"), 1);
    EXPECT_TRUE(has(log.text(), "C_SetAttributeValue\nErrore = 0x48\n** Messaggio di Errore\n"
                                "Errore modifica LABEL/ID oggetti presenti su smartcard ("));
    EXPECT_TRUE(has(log.text(), "ChangeValueObject\nErrore = 0x1\n"));
    EXPECT_EQ(module.calls("C_CreateObject"), 0U);
    EXPECT_EQ(objects(), before);
}

// A certificate that no pair is asked for.
class InstallStep : public OpenFlow {
  protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(OpenFlow::SetUp());
        unsigned char* der = certificate.der;
        certificate.derLength = static_cast<uint64_t>(i2d_X509(&authority().certificate(), &der));
        log.clear();
    }
    datiCert certificate{};
};

TEST_F(InstallStep, AuthoritysCertificateIsWrittenAsItIs) {
    char label[] = "Korvalenta Firma Dig";
    const auto der = zv::der_of(&certificate, certificate.derLength);
    ASSERT_EQ(zv::fill_template("t", der, label, zv::Serial::as_given), 0);
    const CK_ULONG serial_length = zv::CertTemplate[8].ulValueLen;
    module.record();
    EXPECT_EQ(InstallCACertificate(nullptr, &certificate, certificate.derLength, label), 0);
    EXPECT_EQ(InstallCACertificate(nullptr, &certificate, certificate.derLength, label), 0)
        << "nothing looks for the first";
    EXPECT_TRUE(has(module.recorded(), "CKA_SERIAL_NUMBER " + std::to_string(serial_length) + " "))
        << "never trimmed";
    EXPECT_EQ(objects().size(), 9u);
    EXPECT_TRUE(has(log.text(),
                    "**  .... InstallCertificate FUN         .... \nhSession = <1> ulCount = <9> hCert = <"));
    module.add_rules("C_CreateObject:1:answer:0x31");
    EXPECT_EQ(InstallCACertificate(nullptr, &certificate, certificate.derLength, label), 1);
    EXPECT_TRUE(has(log.text(),
                    "C_CreateObject\nErrore = 0x49\n** Messaggio di Errore\nCertificato CA non memorizzato "
                    "correttamente sulla smartcard (La smartcard non ha memoria sufficiente"));
    char unread[] = "unread";
    EXPECT_EQ(InstallCACertificate(nullptr, &certificate, 10, unread), 1);
    EXPECT_STREQ(zv::crtLabel, label) << "a certificate that cannot be read leaves the template alone";
    EXPECT_TRUE(has(log.text(), "** Messaggio di Errore\nProblemi in Conversione ISSUER e SUBJECT a DER\n"));
}

TEST_F(InstallStep, SerialNumberLosesItsLeadingZeros) {
    char serial[] = {0x00, 0x00, 0x4A, 0x01, 0x00};
    unsigned long length = sizeof serial;
    zv::trim_serial(serial, length);
    EXPECT_EQ(std::string(serial, length), std::string("\x4A\x01\0", 3));
    char zeros[4] = {};
    length = sizeof zeros;
    zv::trim_serial(zeros, length);
    EXPECT_EQ(length, 0U);

    const auto der = zv::der_of(&certificate, certificate.derLength);
    static constexpr unsigned char behind_version[] = {0xA0, 0x03, 0x02, 0x01, 0x02, 0x02};
    const auto number =
        std::search(der.begin(), der.end(), std::begin(behind_version), std::end(behind_version)) +
        sizeof behind_version;
    const CK_ULONG bytes = number[0];
    ASSERT_GT(bytes, 1U);
    number[1] = 0x00;
    number[2] |= 0x80;
    ASSERT_EQ(zv::fill_template("t", der, "x", zv::Serial::trimmed), 0);
    const CK_ATTRIBUTE& entry = zv::CertTemplate[8];
    EXPECT_EQ(entry.ulValueLen, bytes - 1);
    EXPECT_EQ(static_cast<char*>(entry.pValue)[bytes - 1], 0) << "zeros behind it, nothing left over";
}

} // namespace
