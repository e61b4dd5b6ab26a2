#include "certificates.h"

#include <gtest/gtest.h>

#include <cstring>

using test::make;
using test::Shape;

namespace {

using Field = int (*)(unsigned char*, unsigned long, char*, int);

// Reads a field into a buffer of exactly that size, whose end is watched.
std::string read(Field field, test::Bytes der, int size = 512, int expected = ZVC_OK) {
    std::vector<char> buffer(static_cast<std::size_t>(size) + 1, 'x');
    EXPECT_EQ(field(der.data(), der.size(), buffer.data(), size), expected) << test::lastError();
    EXPECT_EQ(buffer.back(), 'x') << "written past the end";
    EXPECT_LT(std::strlen(buffer.data()), static_cast<std::size_t>(size));
    return buffer.data();
}

Shape withSubject(std::vector<test::Attribute> subject) {
    Shape shape;
    shape.subject = std::move(subject);
    return shape;
}

std::string codFiscOf(const std::string& serialNumber, const std::string& commonName = "Mario Rossi") {
    std::vector<test::Attribute> subject{{"CN", commonName}};
    if (!serialNumber.empty()) subject.push_back({"serialNumber", serialNumber});
    return read(kvGetCodFisc, make(withSubject(subject)).der, 128);
}

} // namespace

TEST(Fields, NamesKeepTheOrderAndOpensslsShortNames) {
    const auto authority = test::makeAuthority("Autorità di prova");
    auto shape = withSubject({{"C", "IT"},
                              {"O", "Non Dichiarato"},
                              {"OU", "Uno"},
                              {"CN", "Mario Rossi"},
                              {"serialNumber", "TINIT-RSSMRA80A01H501U"},
                              {"GN", "Mario"},
                              {"SN", "Rossi"},
                              {"dnQualifier", "2024123456"},
                              {"emailAddress", "mario@example.it"},
                              {"title", "Notaio"},
                              {"pseudonym", "mr"},
                              {"1.2.3.4.5", "fuori elenco"}});
    shape.issuer = &authority;
    const auto der = make(shape).der;
    EXPECT_EQ(
        read(kvGetSubjectDN, der),
        "/C=IT/O=Non Dichiarato/OU=Uno/CN=Mario Rossi/serialNumber=TINIT-RSSMRA80A01H501U/GN=Mario/SN=Rossi"
        "/dnQualifier=2024123456/emailAddress=mario@example.it/title=Notaio/pseudonym=mr"
        "/1.2.3.4.5=fuori elenco");
    EXPECT_EQ(read(kvGetIssuerDN, der), "/C=IT/CN=Autorità di prova");
    EXPECT_EQ(read(kvGetIUT, der, 32), "2024123456");
}

TEST(Fields, EveryStringTypeComesOutAsUtf8) {
    const std::string bmp("\0C\0\xE0\x20\xAC", 6); // "Cà€"
    EXPECT_EQ(read(kvGetSubjectDN, make(withSubject({{"O", bmp, V_ASN1_BMPSTRING}})).der), "/O=Cà€");
    EXPECT_EQ(read(kvGetSubjectDN, make(withSubject({{"O", "Societ\xE0", V_ASN1_T61STRING}})).der),
              "/O=Società");
    EXPECT_EQ(read(kvGetSubjectDN, make(withSubject({{"O", "Rossi S.p.A.", V_ASN1_PRINTABLESTRING}})).der),
              "/O=Rossi S.p.A.");
    // No text at all is told byte by byte, and a line feed or a NUL never passes for the end.
    EXPECT_EQ(read(kvGetSubjectDN, make(withSubject({{"O", "\xC3(", V_ASN1_BIT_STRING}})).der), "/O=\\xC3(");
    EXPECT_EQ(read(kvGetSubjectDN, make(withSubject({{"O", std::string("a\nb\0c", 5)}})).der),
              "/O=a\\x0Ab\\x00c");
}

TEST(Fields, TextsEndAtAWholeCharacterWithinTheBuffer) {
    const auto der = make(withSubject({{"O", "aàà"}})).der; // "/O=a" and two characters of two bytes
    EXPECT_EQ(read(kvGetSubjectDN, der, 9), "/O=aàà");
    for (const int size : {8, 7})
        EXPECT_EQ(read(kvGetSubjectDN, der, size, ZVC_ERR_CUT), "/O=aà");
    EXPECT_EQ(read(kvGetSubjectDN, der, 6, ZVC_ERR_CUT), "/O=a");
    EXPECT_EQ(read(kvGetSubjectDN, der, 1, ZVC_ERR_CUT), "");
    EXPECT_FALSE(test::lastError().empty());
}

TEST(Fields, SerialsAndKeyIdentifiersAreUpperCaseHexadecimal) {
    Shape shape;
    for (const auto& [given, told] :
         {std::pair{"00", "00"},
          {"0abc", "0ABC"},
          {"8A01", "8A01"},
          {"7fffffffffffffffffffffffffffffffffffffff", "7FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF"},
          {"-05", "-05"}}) {
        shape.serial = given;
        EXPECT_EQ(read(kvX509GetSerial, make(shape).der, 128), told);
    }
    shape.extensions = "subjectKeyIdentifier = DE:AD:0b:ef";
    EXPECT_EQ(read(zv_X509V3_get_subject_key_identifier, make(shape).der, 256), "DEAD0BEF");
}

TEST(Fields, DatesAreUtcOnBothSidesOf2050) {
    Shape shape;
    shape.notBefore = "19991231235959Z";
    shape.notAfter = "20500101000000Z";
    auto der = make(shape).der;
    char from[24], to[24];
    ASSERT_EQ(kvGetCertDate(der.data(), der.size(), from, to), ZVC_OK);
    EXPECT_STREQ(from, "31/12/1999 23:59:59");
    EXPECT_STREQ(to, "01/01/2050 00:00:00");

    char both[2048], subject[2048];
    ASSERT_EQ(GiveMeCertDate(der.data(), der.size(), both, sizeof both, subject), ZVC_OK);
    EXPECT_STREQ(both, "31/12/1999 23:59:59 - 01/01/2050 00:00:00");
    EXPECT_STREQ(subject, "/CN=Titolare");
    EXPECT_EQ(GiveMeCertDate(der.data(), der.size(), both, 20, subject), ZVC_ERR_CUT);
    EXPECT_STREQ(both, "31/12/1999 23:59:59");
    EXPECT_STREQ(subject, "/CN=Titolare");
}

TEST(Fields, CodiceFiscale) {
    EXPECT_EQ(codFiscOf("IT:RSSMRA80A01H501U"), "RSSMRA80A01H501U");
    EXPECT_EQ(codFiscOf("TINIT-RSSMRA80A01H501U"), "RSSMRA80A01H501U");
    EXPECT_EQ(codFiscOf("TINIT-12345678901"), "12345678901");
    EXPECT_EQ(codFiscOf("RSSMRA80A01H501U"), "RSSMRA80A01H501U");
    EXPECT_EQ(codFiscOf("", "RSSMRA80A01H501U/6120016612345678.abcDEF=="), "RSSMRA80A01H501U");
    EXPECT_EQ(codFiscOf("", "RSSMRAULA0MH5L1U/1.x"), "RSSMRAULA0MH5L1U"); // letters in the place of digits
    // Other numbers of a person are none, and an ordinary name in front of a slash is no code.
    EXPECT_EQ(codFiscOf("IDCIT-CA12345AA"), "");
    EXPECT_EQ(codFiscOf("VATIT-12345678901"), "");
    EXPECT_EQ(codFiscOf("", "Mario Rossi Abcd/x"), "");
}

TEST(Fields, PoliciesAndTheFirstExplicitText) {
    Shape shape;
    shape.extensions = "certificatePolicies = 1.3.76.16.6, @one, @two\n"
                       "[one]\npolicyIdentifier = 1.2.840.99999.1\nuserNotice.1 = @first\n"
                       "[two]\npolicyIdentifier = 0.4.0.194112.1.2\nuserNotice.1 = @second\n"
                       "[first]\nexplicitText = UTF8:Certificato qualificato: età\n"
                       "[second]\nexplicitText = UTF8:Altro";
    const auto der = make(shape).der;
    EXPECT_EQ(read(kvGetCertificatePolicies, der, 128), "1.3.76.16.6,1.2.840.99999.1,0.4.0.194112.1.2");
    EXPECT_EQ(read(kvGetCertificatePolicies, der, 28, ZVC_ERR_CUT), "1.3.76.16.6,1.2.840.99999.1");
    EXPECT_EQ(read(kvGetCertificatePolicies, der, 27, ZVC_ERR_CUT), "1.3.76.16.6");
    EXPECT_EQ(read(kvGetExplicitText, der, 256), "Certificato qualificato: età");
}

TEST(Fields, AbsentOnesAreEmptyAndNoFailure) {
    const auto der = make(Shape{}).der;
    for (const Field field : {kvGetIUT, kvGetCodFisc, kvGetCertificatePolicies, kvGetExplicitText,
                              zv_X509V3_get_subject_key_identifier})
        EXPECT_EQ(read(field, der), "");
    EXPECT_EQ(test::lastError(), "");
}

TEST(Fields, BadCertificatesAndArgumentsAreRefused) {
    auto der = make(Shape{}).der;
    const test::Bytes cut(der.begin(), der.end() - 1);
    for (const Field field :
         {kvGetSubjectDN, kvGetIssuerDN, kvX509GetSerial, kvGetIUT, kvGetCodFisc, kvGetCertificatePolicies,
          kvGetExplicitText, zv_X509V3_get_subject_key_identifier}) {
        for (const auto& bad : {test::Bytes{}, test::Bytes(300, 0x30), cut})
            EXPECT_EQ(read(field, bad, 64, bad.empty() ? ZVC_ERR_ARGUMENT : ZVC_ERR_BAD_CERTIFICATE), "");
        EXPECT_EQ(field(der.data(), der.size(), nullptr, 10), ZVC_ERR_ARGUMENT);
        char one = 'x';
        EXPECT_EQ(field(der.data(), der.size(), &one, 0), ZVC_ERR_ARGUMENT);
        EXPECT_EQ(one, 'x');
    }
    char from[24] = "x", to[24] = "x";
    EXPECT_EQ(kvGetCertDate(der.data(), 5, from, to), ZVC_ERR_BAD_CERTIFICATE);
    EXPECT_STREQ(from, "");
    EXPECT_STREQ(to, "");
    // Cards pad their files: what follows a certificate is not looked at.
    der.insert(der.end(), 100, 0);
    EXPECT_EQ(read(kvGetSubjectDN, der), "/CN=Titolare");
}

TEST(Fields, Sha1OfKnownTexts) {
    unsigned char digest[20];
    unsigned char abc[] = "abc";
    Sha1Digest(3, abc, digest);
    EXPECT_EQ(test::Bytes(digest, digest + 4), (test::Bytes{0xA9, 0x99, 0x3E, 0x36}));
    Sha1Digest(0, nullptr, digest);
    EXPECT_EQ(test::Bytes(digest, digest + 4), (test::Bytes{0xDA, 0x39, 0xA3, 0xEE}));
    Sha1Digest(5, nullptr, digest);
    EXPECT_EQ(test::Bytes(digest, digest + 20), test::Bytes(20, 0));
}
