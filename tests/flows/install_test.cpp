// Certificates written by themselves, and the traces of single steps.
#include "install/certificate.h"
#include "install/certificate_object.h"
#include "store/objects.h"
#include "tests/flows/flow.h"

#include <openssl/x509.h>

namespace {

using namespace zvtest;

class Install : public Flow {
  protected:
    void SetUp() override {
        std::string pin = PIN, library = path();
        ASSERT_EQ(__Initialize(0, pin.data(), library.data()), CKR_OK);
        unsigned char* der = certificate.der;
        certificate.derLength = static_cast<uint64_t>(i2d_X509(&authority().certificate(), &der));
        log.clear();
    }
    datiCert certificate{};
};

TEST_F(Install, AuthoritysCertificateIsWrittenAsItIs) {
    char label[] = "Korvalenta Firma Dig";
    zv::CertificateParts parts;
    ASSERT_EQ(parts.read("t", zv::der_of(&certificate, certificate.derLength)), 0);
    const unsigned long serial_length = parts.serial.length;
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
    EXPECT_EQ(InstallCACertificate(nullptr, &certificate, 10, label), 1);
    EXPECT_TRUE(has(log.text(), "** Messaggio di Errore\nProblemi in Conversione ISSUER e SUBJECT a DER\n"));
}

TEST_F(Install, SerialNumberLosesItsLeadingZeros) {
    zv::CertificateParts parts;
    const unsigned char serial[] = {0x00, 0x00, 0x8A, 0x01};
    std::copy(std::begin(serial), std::end(serial), parts.serial.buffer.begin());
    parts.serial.length = 4;
    parts.trim_serial();
    EXPECT_EQ(parts.serial.length, 2u);
    EXPECT_EQ(parts.serial.buffer[0], 0x8A);
    parts.serial.buffer[0] = parts.serial.buffer[1] = 0;
    parts.trim_serial();
    EXPECT_EQ(parts.serial.length, 0u);
}

TEST_F(Install, TracedCallsDifferInWhatAFailureLogs) {
    char title[] = "t";
    module.add_rules("C_FindObjectsInit:1:answer:0x30;C_FindObjectsFinal:1:answer:0x91");
    EXPECT_EQ(FindObjectsInit(nullptr, title, zv::hSession, nullptr, 0), CKR_DEVICE_ERROR);
    EXPECT_TRUE(
        has(log.text(),
            "** t\nC_FindObjectsInit\nhSession = 0x1\n** Messaggio di Errore\nErrore nella ricerca degli "
            "oggetti presenti sulla smartcard (Sono occorsi"));
    EXPECT_EQ(FindObjectsFinal(nullptr, title, zv::hSession), CKR_OPERATION_NOT_INITIALIZED);
    EXPECT_TRUE(has(log.text(), "** t\nC_FindObjectsFinal\nErrore = 0x145\n** Messaggio di Errore\n"));
    unsigned char value[4];
    CK_ATTRIBUTE entry = {CKA_VALUE, value, sizeof value};
    module.add_rules("C_GetAttributeValue:1:absurd:length");
    CK_OBJECT_HANDLE object = 0;
    CK_OBJECT_CLASS object_class = CKO_CERTIFICATE;
    CK_ATTRIBUTE by_class = zv::attribute_of(CKA_CLASS, object_class);
    EXPECT_EQ(FindAnObject(zv::hSession, &by_class, 1, &object), CKR_BUFFER_TOO_SMALL);
    EXPECT_NE(object, 0u) << "the handle is written all the same";
    EXPECT_EQ(GetAttributeValue(nullptr, title, zv::hSession, object, &entry, 1), CKR_BUFFER_TOO_SMALL);
    EXPECT_TRUE(has(log.text(),
                    "** t\nC_GetAttributeValue\nErrore = 0x336\n** Messaggio di Errore\nErrore nella lettura "
                    "chiave sulla smartcard (Il risultato"));
    module.add_rules("C_FindObjects:1:absurd:count");
    EXPECT_EQ(FindAnObject(zv::hSession, &by_class, 1, &object), CKR_GENERAL_ERROR);
}

} // namespace
