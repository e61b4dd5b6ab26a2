#include "api/state.h"
#include "inventory/names.h"
#include "routines.h"
#include "tests/support/log_file.h"

#include <gtest/gtest.h>

namespace {

void load(const std::string& dn) {
    char text[4096];
    std::strcpy(text, dn.c_str());
    _RiempiDN(text, sizeof text);
}

TEST(NameInput, AttributesStandAnywhereInOneText) {
    load("2.5.4.6=ITA 2.5.4.3=ROSSI MARIO   /serialNumber=TINIT-X/OU=uno/OU=due,2.5.4.11=tre/CN=no/gn=Mario");
    EXPECT_STREQ(zv::dNameRen.country, "IT");
    EXPECT_STREQ(zv::dNameRen.commonName, "ROSSI MARIO");
    EXPECT_STREQ(zv::dNameRen.serialNumber, "TINIT-X");
    EXPECT_STREQ(zv::dNameRen.orgUnit[0], "uno");
    EXPECT_STREQ(zv::dNameRen.orgUnit[1], "due,");
    EXPECT_STREQ(zv::dNameRen.orgUnit[2], "tre/CN=no");
    EXPECT_STREQ(zv::dNameRen.givenName, "Mario");
    load("");
    EXPECT_STREQ(zv::dNameRen.commonName, "");
}

TEST(NameInput, WidthsAndSurplusUnits) {
    std::string dn = "2.5.4.13=" + std::string(200, 'd') + "2.5.4.4=" + std::string(80, 's');
    for (int i = 0; i < 7; ++i)
        dn += "2.5.4.11=u" + std::to_string(i);
    dn += "2.5.4.7=Roma2.5.4.12=Dr2.5.4.65=Ps2.5.4.8=RM";
    load(dn);
    EXPECT_EQ(std::string(zv::dNameRen.description), std::string(128, 'd'));
    EXPECT_EQ(std::string(zv::dNameRen.surname), std::string(64, 's'));
    EXPECT_STREQ(zv::dNameRen.orgUnit[4], "u4");
    EXPECT_STREQ(zv::dNameRen.commonName, "") << "a sixth unit must not run into the next field";
    EXPECT_STREQ(zv::dNameRen.locality, "Roma");
    EXPECT_STREQ(zv::dNameRen.title, "Dr");
    EXPECT_STREQ(zv::dNameRen.pseudonym, "Ps");
    EXPECT_STREQ(zv::dNameRen.stateOrProvince, "RM");
}

std::string replaced_in(std::string text, std::string from, std::string to) {
    replace(text.data(), from.data(), to.data());
    return zv::newstring;
}

TEST(NameInput, ReplacementKeepsWithin1023Characters) {
    EXPECT_EQ(replaced_in("aaa", "aa", "b"), "ba");
    EXPECT_EQ(replaced_in("abc", "", "x"), "abc");
    EXPECT_EQ(replaced_in(std::string(2000, 'x'), "y", ""), std::string(1023, 'x'));
    const std::string head(1020, 'x');
    EXPECT_EQ(replaced_in(head + "a", "a", "bb"), head + "bb");
    EXPECT_EQ(replaced_in(head + "ab", "a", "12345"), head + "ab")
        << "an occurrence that would not fit stays";
    EXPECT_EQ(replaced_in(head + "abcd", "a", "12345"), head) << "what would not fit unreplaced is dropped";
    EXPECT_EQ(replaced_in(head + "aXX", "a", "bb"), head + "bb") << "a rest that would not fit is dropped";
    EXPECT_EQ(replaced_in("a" + head + "xxxxa", "a", "b"), "b")
        << "building stops where a part would not fit";
}

TEST(InventoryNames, EveryOccurrenceBecomesAnOid) {
    char name[512] = "/C=IT/ou=A/OU=B/CN=N/serialNumber=S/SN=R", scratch[4096];
    EXPECT_EQ(__DescrToOid(name, scratch), 0);
    EXPECT_STREQ(name, "2.5.4.6=IT2.5.4.11=A2.5.4.11=B2.5.4.3=N2.5.4.5=S2.5.4.4=R");
    char small[24] = "/C=IT/C=IT/C=IT/C=IT";
    zv::rewrite_name(small, sizeof small);
    EXPECT_STREQ(small, "2.5.4.6=IT2.5.4.6=IT2.5");
}

TEST(InventoryNames, AServicesCardHasItsCommonNameLast) {
    char scratch[4096], plain[512] = "/C=IT/O=X";
    EXPECT_EQ(__DescrToOidCNS(plain, scratch), 1);
    EXPECT_STREQ(plain, "/C=IT/O=X");
    char short_name[512] = "/C=IT/CN=RSSMRA/123/OU=tail";
    EXPECT_EQ(__DescrToOidCNS(short_name, scratch), 0);
    EXPECT_STREQ(short_name, "2.5.4.6=IT2.5.4.3=RSSMRA/123/OU=tail") << "the copied value is not rewritten";
    const std::string value(62, 'v');
    char long_name[512];
    std::strcpy(long_name, ("/C=IT/CN=" + value + "rest/OU=u").c_str());
    EXPECT_EQ(__DescrToOidCNS(long_name, scratch), 0);
    EXPECT_EQ(std::string(long_name), "2.5.4.6=IT2.5.4.3=" + value + "rest2.5.4.11=u");
}

std::string rewritten(const std::string& text, int rounds = 0) {
    char name[8216], work[8216];
    std::strcpy(name, text.c_str());
    EXPECT_EQ(DescrToOid(name, work), rounds);
    return name;
}

TEST(InstallNames, ShortNamesBecomeOids) {
    EXPECT_EQ(rewritten("C=IT, O=Acme, CN=Ufficio Uno"), "C=IT,2.5.4.10=Acme,2.5.4.3=Ufficio Uno");
    EXPECT_EQ(rewritten("x, cn=a"), "x,2.5.4.3=a");
    EXPECT_EQ(rewritten("a, OU=1, OU=2/Email=e"), "a,2.5.4.11=1,2.5.4.11=2,1.2.840.113549.1.9.1=e");
    char name[128] = "x, D=1, D=2, D=3, D=4, N=5", work[128];
    EXPECT_EQ(CommaToSlash(name, work), 2);
    EXPECT_STREQ(name, "x, D=1/D=2, D=3/D=4/N=5");
}

TEST(InstallNames, ManyAtOnce) {
    char first[8216] = "x, O=a", last[8216] = "x, D=1, D=2", *names[16] = {};
    names[0] = first;
    EXPECT_EQ(ConvertiCertificato(names), 0);
    EXPECT_STREQ(first, "x,2.5.4.10=a");
    names[15] = last;
    EXPECT_EQ(ConvertiCertificato(names), 1) << "the result of the last one";
    EXPECT_STREQ(last, "x,2.5.4.13=1/D=2");
}

int decoded(std::string pem, std::string& der) {
    char out[8191] = {};
    const int length = CrtB64ToDer(pem.data(), out);
    der.assign(out, static_cast<std::size_t>(length));
    return length;
}

TEST(InstallNames, PemBecomesDer) {
    const std::string begin = "-----BEGIN CERTIFICATE-----", end = "\n-----END CERTIFICATE-----";
    std::string der;
    const zvtest::LogFile log;
    EXPECT_EQ(decoded(begin + "\nQUJD\nREU=" + end, der), 5);
    EXPECT_EQ(der, "ABCDE");
    EXPECT_NE(log.text().find("dimensione = 5\nABCDE"), std::string::npos);
    EXPECT_GE(log.raw().size(), 8191u) << "the whole buffer goes to the log";
    EXPECT_EQ(decoded(begin + "QUJD" + end, der), 3);
    EXPECT_EQ(decoded(begin + "QUJDRE" + end, der), 0);
    EXPECT_EQ(decoded(begin + "QUJ\xFF" + end, der), 3) << "byte 0xFF counts as 0";
    EXPECT_EQ(decoded("-----END CERTIFICATE-----" + begin, der), 0);
    EXPECT_EQ(decoded(begin + "QUJD", der), 0);
    EXPECT_EQ(decoded(begin + std::string(20000, 'A') + end, der), 0);
}

TEST(NameRewriting, NullIsNoName) {
    char work[1];
    EXPECT_EQ(DescrToOid(nullptr, work), 0);
    EXPECT_EQ(CommaToSlash(nullptr, nullptr), 0);
    EXPECT_EQ(__DescrToOid(nullptr, nullptr), 0);
    EXPECT_EQ(__DescrToOidCNS(nullptr, nullptr), 1);
}

} // namespace
