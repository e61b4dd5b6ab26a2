#include "certificates.h"

#include <gtest/gtest.h>

#include <cstring>

using test::make;

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

std::string subject(const std::string& value, int form = MBSTRING_UTF8) {
    return read(kvGetSubjectDN, make({.subject = "O=" + value, .form = form}).der);
}

std::string codFisc(const std::string& name) {
    return read(kvGetCodFisc, make({.subject = name}).der, 128);
}

} // namespace

TEST(Fields, NamesKeepTheOrderAndOpensslsShortNames) {
    const auto authority = test::makeAuthority("Autorità di prova");
    const auto der =
        make({.subject = "C=IT|O=Non Dichiarato|OU=Uno|CN=Mario Rossi|serialNumber=TINIT-X|GN=Mario|SN=Rossi|"
                         "dnQualifier=2024123456|emailAddress=m@example.it|title=Notaio|1.2.3.4.5=altro",
              .issuer = &authority})
            .der;
    EXPECT_EQ(read(kvGetSubjectDN, der),
              "/C=IT/O=Non Dichiarato/OU=Uno/CN=Mario Rossi/serialNumber=TINIT-X/GN=Mario/SN=Rossi"
              "/dnQualifier=2024123456/emailAddress=m@example.it/title=Notaio/1.2.3.4.5=altro");
    EXPECT_EQ(read(kvGetIssuerDN, der), "/C=IT/CN=Autorità di prova");
    EXPECT_EQ(read(kvGetIUT, der, 32), "2024123456");
}

TEST(Fields, EveryStringTypeComesOutAsUtf8) {
    EXPECT_EQ(subject(std::string("\0C\0\xE0\x20\xAC", 6), V_ASN1_BMPSTRING), "/O=Cà€");
    EXPECT_EQ(subject("Societ\xE0", V_ASN1_T61STRING), "/O=Società");
    EXPECT_EQ(subject("Rossi S.p.A.", V_ASN1_PRINTABLESTRING), "/O=Rossi S.p.A.");
    // No text at all is told byte by byte, and a line feed or a NUL never passes for the end.
    EXPECT_EQ(subject("\xC3(", V_ASN1_BIT_STRING), "/O=\\xC3(");
    EXPECT_EQ(subject(std::string("a\nb\0c", 5)), "/O=a\\x0Ab\\x00c");
}

TEST(Fields, TextsEndAtAWholeCharacterWithinTheBuffer) {
    const auto der = make({.subject = "O=aàà"}).der; // "/O=a" and two characters of two bytes
    EXPECT_EQ(read(kvGetSubjectDN, der, 9), "/O=aàà");
    for (const int size : {8, 7})
        EXPECT_EQ(read(kvGetSubjectDN, der, size, ZVC_ERR_CUT), "/O=aà");
    EXPECT_EQ(read(kvGetSubjectDN, der, 6, ZVC_ERR_CUT), "/O=a");
    EXPECT_EQ(read(kvGetSubjectDN, der, 1, ZVC_ERR_CUT), "");
    EXPECT_NE(test::lastError(), "");
}

TEST(Fields, SerialsAndKeyIdentifiersAreUpperCaseHexadecimal) {
    for (const auto& [given, told] :
         {std::pair{"00", "00"}, {"0abc", "0ABC"}, {"8A01", "8A01"}, {"-05", "-05"}})
        EXPECT_EQ(read(kvX509GetSerial, make({.serial = given}).der, 128), told);
    const auto der = make({.extensions = "subjectKeyIdentifier = DE:AD:0b:ef"}).der;
    EXPECT_EQ(read(zv_X509V3_get_subject_key_identifier, der, 256), "DEAD0BEF");
}

TEST(Fields, DatesAreUtcOnBothSidesOf2050) {
    auto der = make({.notBefore = "19991231235959Z", .notAfter = "20500101000000Z"}).der;
    char from[24], to[24], both[2048], name[2048];
    ASSERT_EQ(kvGetCertDate(der.data(), der.size(), from, to), ZVC_OK);
    EXPECT_STREQ(from, "31/12/1999 23:59:59");
    EXPECT_STREQ(to, "01/01/2050 00:00:00");
    ASSERT_EQ(GiveMeCertDate(der.data(), der.size(), both, sizeof both, name), ZVC_OK);
    EXPECT_STREQ(both, "31/12/1999 23:59:59 - 01/01/2050 00:00:00");
    EXPECT_STREQ(name, "/CN=Titolare");
    EXPECT_EQ(GiveMeCertDate(der.data(), der.size(), both, 20, name), ZVC_ERR_CUT);
    EXPECT_STREQ(both, from);
    EXPECT_STREQ(name, "/CN=Titolare");
    EXPECT_EQ(kvGetCertDate(der.data(), 5, from, to), ZVC_ERR_BAD_CERTIFICATE);
    EXPECT_EQ(std::string(from) + to, "");
}

TEST(Fields, CodiceFiscale) {
    const std::string code = "RSSMRA80A01H501U";
    for (const char* prefix : {"IT:", "TINIT-", ""})
        EXPECT_EQ(codFisc("CN=Mario Rossi|serialNumber=" + (prefix + code)), code);
    EXPECT_EQ(codFisc("serialNumber=TINIT-12345678901"), "12345678901");
    EXPECT_EQ(codFisc("CN=" + code + "/6120016612345678.abcDEF=="), code);
    EXPECT_EQ(codFisc("CN=RSSMRAULA0MH5L1U/1.x"), "RSSMRAULA0MH5L1U"); // letters in the place of digits
    // Other numbers of a person are none, and what only resembles a code is no code.
    for (const char* other :
         {"serialNumber=IDCIT-CA12345AA", "serialNumber=VATIT-12345678901", "CN=RSSMRA80101H501U/x"})
        EXPECT_EQ(codFisc(other), "") << other;
}

TEST(Fields, PoliciesAndTheFirstExplicitText) {
    const auto der =
        make({.extensions = "certificatePolicies = 1.3.76.16.6, @one, @two\n"
                            "[one]\npolicyIdentifier = 1.2.840.99999.1\nuserNotice.1 = @first\n"
                            "[two]\npolicyIdentifier = 0.4.0.194112.1.2\nuserNotice.1 = @second\n"
                            "[first]\nexplicitText = UTF8:Certificato qualificato: età\n"
                            "[second]\nexplicitText = UTF8:Altro"})
            .der;
    EXPECT_EQ(read(kvGetCertificatePolicies, der, 128), "1.3.76.16.6,1.2.840.99999.1,0.4.0.194112.1.2");
    EXPECT_EQ(read(kvGetCertificatePolicies, der, 28, ZVC_ERR_CUT), "1.3.76.16.6,1.2.840.99999.1");
    EXPECT_EQ(read(kvGetCertificatePolicies, der, 27, ZVC_ERR_CUT), "1.3.76.16.6");
    EXPECT_EQ(read(kvGetExplicitText, der, 256), "Certificato qualificato: età");
}

TEST(Fields, AbsentFieldsAreEmptyBadCertificatesAreRefused) {
    auto der = make({}).der;
    const test::Bytes cut(der.begin(), der.end() - 1);
    for (const Field field : {kvGetIUT, kvGetCodFisc, kvGetCertificatePolicies, kvGetExplicitText,
                              zv_X509V3_get_subject_key_identifier}) {
        EXPECT_EQ(read(field, der), "");
        EXPECT_EQ(test::lastError(), "");
        EXPECT_EQ(read(field, {}, 64, ZVC_ERR_ARGUMENT), "");
        EXPECT_EQ(read(field, test::Bytes(300, 0x30), 64, ZVC_ERR_BAD_CERTIFICATE), "");
        EXPECT_EQ(read(field, cut, 64, ZVC_ERR_BAD_CERTIFICATE), "");
        EXPECT_EQ(field(der.data(), der.size(), nullptr, 10), ZVC_ERR_ARGUMENT);
        char one = 'x';
        EXPECT_EQ(field(der.data(), der.size(), &one, 0), ZVC_ERR_ARGUMENT);
        EXPECT_EQ(one, 'x');
    }
    // Cards pad their files: what follows a certificate is not looked at.
    der.insert(der.end(), 100, 0);
    EXPECT_EQ(read(kvGetSubjectDN, der), "/CN=Titolare");
}

TEST(Fields, Sha1OfKnownTexts) {
    unsigned char digest[20], abc[] = "abc";
    const auto start = [&] { return std::vector<int>(digest, digest + 4); };
    Sha1Digest(3, abc, digest);
    EXPECT_EQ(start(), (std::vector{0xA9, 0x99, 0x3E, 0x36}));
    Sha1Digest(0, nullptr, digest);
    EXPECT_EQ(start(), (std::vector{0xDA, 0x39, 0xA3, 0xEE}));
}
