#include "host/distinguished_name.h"
#include "host/error.h"
#include "host/holder.h"

#include <gtest/gtest.h>

namespace {

using namespace zvhost;

std::string why_not(const std::string& text) {
    return DistinguishedName::from_user(text).why_not_requestable().id;
}

TEST(NameTest, ReadsTheFormsOfTheLibraryAndOfPeople) {
    const std::string oids = "2.5.4.6=IT2.5.4.10=Ditta 2042.5.4.3=Ada  Rossi2.5.4.4=Rossi2.5.4.46=9";
    const auto name = DistinguishedName::from_oid_form(oids);
    EXPECT_EQ(name.readable(), "C=IT, O=Ditta 204, CN=Ada  Rossi, SN=Rossi, dnQualifier=9");
    EXPECT_EQ(name.oid_form(), oids);
    EXPECT_EQ(
        DistinguishedName::from_user("/C=IT/O=Ditta 204/cn=Ada  Rossi/SN=Rossi/dnqualifier=9").oid_form(),
        oids);
    EXPECT_EQ(DistinguishedName::from_user(oids).oid_form(), oids);
    EXPECT_EQ(DistinguishedName::from_user("/CN=a/b/c=IT").readable(), "CN=a/b, C=IT");
}

TEST(NameTest, RefusesATextThatIsNoSubject) {
    for (const char* text : {"CN=Ada", "Ada", " /CN=Ada", "/UID=1", "/CN=Ada/organizationIdentifier=VATIT-1"})
        EXPECT_THROW(static_cast<void>(DistinguishedName::from_user(text)), Error) << text;
}

TEST(NameTest, SaysWhatARequestWouldNotCarryWhole) {
    const std::string longest(64, 'x');
    EXPECT_EQ(why_not("/C=IT/CN=" + longest + "/L=" + longest + longest.substr(1)), "");
    EXPECT_EQ(why_not("/OU=1/OU=2/OU=3/OU=4/OU=5/CN=a"), "");
    EXPECT_EQ(why_not("/CN=Città/emailAddress=a@b.it/serialNumber=TINIT-A:1"), "");
    for (const std::string& text : std::initializer_list<std::string>{
             "/CN=" + longest + "x", "/L=" + longest + longest, "/C=ITA", "/OU=1/OU=2/OU=3/OU=4/OU=5/OU=6",
             "/CN=a/CN=b", "/CN=", "/CN=a\nb", "/C=I_", "/serialNumber=è", "/emailAddress=è@b.it",
             "/CN=a 2.5.4.8 b", "2.5.4.3=a/OU=b", "2.5.4.10=Ditta/organizationIdentifier=VATIT-1"})
        EXPECT_NE(why_not(text), "") << text;
    EXPECT_EQ(DistinguishedName().why_not_requestable().id, "subject-empty");
}

// A services card's common name has slashes in it, and may well end like an attribute.
TEST(NameTest, TakesValuesThatAreKnownOneByOneAsTheyAre) {
    const auto name = DistinguishedName::from_oids({{"2.5.4.6", "IT"}, {"2.5.4.3", "CLLD/90.ab/Cd="}});
    EXPECT_EQ(name.readable(), "C=IT, CN=CLLD/90.ab/Cd=");
    EXPECT_EQ(name.oid_form(), "2.5.4.6=IT2.5.4.3=CLLD/90.ab/Cd=");
    EXPECT_EQ(name.why_not_requestable().id, "");
    for (const NameAttribute& bad :
         {NameAttribute{"2.5.4.97", "VATIT-1"}, NameAttribute{"2.5.4.3", "a/OU=b"}})
        EXPECT_NE(DistinguishedName::from_oids({bad}).why_not_requestable().id, "") << bad.value;
}

// 1023 characters with one line break for each attribute are what the library works on.
TEST(NameTest, KnowsToTheCharacterWhenTheTailWouldBeLost) {
    std::string text = "/CN=" + std::string(64, 'c') + "/O=" + std::string(64, 'o');
    for (int i = 0; i < 5; ++i)
        text += "/OU=" + std::string(64, 'u');
    for (const char* wide : {"L", "description", "emailAddress"})
        text += "/" + std::string(wide) + "=" + std::string(127, 'w');
    text += "/title=" + std::string(40, 't');
    const auto used = [](const std::string& name) {
        const auto parsed = DistinguishedName::from_user(name);
        return parsed.oid_form().size() + parsed.attributes().size();
    };
    const std::size_t left = 1023 - used(text + "/ST=x") + 1;
    ASSERT_LE(left, 64U);
    EXPECT_EQ(why_not(text + "/ST=" + std::string(left, 's')), "");
    EXPECT_NE(why_not(text + "/ST=" + std::string(left + 1, 's')), "");
}

TEST(NameTest, KnowsAHolderAgain) {
    EXPECT_EQ(plain_name("Nicolò D'Amìco"), plain_name("D\u2019AMICO  NICOLO'"));
    EXPECT_EQ(plain_name("Jose\u0301 Šimić"), "JOSE SIMIC");
    EXPECT_NE(plain_name("Ада"), plain_name("Ева"));
    EXPECT_TRUE(same_holder({"", "A1", "ADA"}, {"", "A1", "EVA"})) << "the code tells";
    EXPECT_FALSE(same_holder({"", "A1", "ADA"}, {"", "B2", "ADA"}));
    EXPECT_FALSE(same_holder({"", "", "ADA"}, {"", "", "EVA"}));
}

} // namespace
