#include "routines.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>

namespace {

template <typename Helper> std::string changed(Helper helper, std::string text) {
    helper(text.data());
    return text.c_str();
}

TEST(Text, TrimsBlanksAlone) {
    EXPECT_EQ(changed(RTrim, "   "), "");
    EXPECT_EQ(changed(RTrim, " a\t  "), " a\t");
    EXPECT_EQ(changed(LTrim, "  \ta "), "\ta ");
    EXPECT_EQ(changed(AllTrim, "  a b  "), "a b");
    EXPECT_EQ(RTrim(nullptr), nullptr);
}

TEST(Text, IsChangedInPlace) {
    EXPECT_EQ(changed(_strupr, "libX.so\xE8"), "LIBX.SO\xE8");
    EXPECT_EQ(changed(_strlwr, "CNSPKCS11.dylib"), "cnspkcs11.dylib");
    EXPECT_EQ(changed(VirgolaToPunto, "1,2,"), "1.2.");
    EXPECT_EQ(_strlwr(nullptr), nullptr);
}

TEST(Text, NumbersAreDecimalWhateverTheRadix) {
    char text[32];
    EXPECT_STREQ(_itoa(-255, text, 16), "-255");
    EXPECT_STREQ(_ltoa(LONG_MIN, text, 2), "-9223372036854775808");
    EXPECT_STREQ(ItoA(7), "7");
    EXPECT_STREQ(LtoA(4294967296L), "4294967296");
    EXPECT_STREQ(LtoAHex(4294967296L), "4294967296");
    EXPECT_STREQ(ILtoAbuffHex, "4294967296");
    EXPECT_STREQ(CatLtoAHex(text, "h", 4294967296L), "h0x4294967296");
    EXPECT_STREQ(CatItoAHex2("n", 3), "n0x3");
}

TEST(Text, NumbersCarryHexPrefixAndDecimalDigits) {
    EXPECT_STREQ(CatItoAHex1("Errore = ", 255), "Errore = 0x255");
    EXPECT_STREQ(CatLtoAHex2("Errore = ", 0x80000001L), "Errore = 0x2147483649");
    EXPECT_STREQ(CatItoAHex1("Errore = ", INT_MIN), "Errore = 0x-2147483648");
    char text[32];
    EXPECT_STREQ(CatItoAHex(text, "n", -1), "n0x-1");
    EXPECT_STREQ(ItoAHex(16), "16");
    EXPECT_STREQ(CatLtoA("Volta = ", 7), "Volta = 7");
    EXPECT_STREQ(ILtoAbuff, "7");
}

TEST(Text, TwoHexHelpersOfOneEntryDoNotShareABuffer) {
    const char* first = CatLtoAHex1("hObject", 1);
    const char* second = CatLtoAHex2("count = ", 2);
    EXPECT_STREQ(first, "hObject0x1");
    EXPECT_STREQ(second, "count = 0x2");
}

TEST(Text, LongPrefixesAreCutNotTheNumber) {
    const std::string prefix(300, 'p');
    EXPECT_EQ(std::string(CatItoA(prefix.c_str(), 12345)), std::string(122, 'p') + "12345");
    EXPECT_EQ(std::string(CatLtoAHex1(prefix.c_str(), LONG_MIN)).size(), 127u);
}

TEST(Text, JoinsUpTo255Characters) {
    EXPECT_EQ(std::string(CatSZtoSZ(std::string(300, 'a').c_str(), "b")), std::string(255, 'a'));
    EXPECT_EQ(std::string(CatSZtoSZ(std::string(250, 'a').c_str(), "0123456789")),
              std::string(250, 'a') + "01234");
    EXPECT_STREQ(CatSZtoSZ(CatSZtoSZ("a", "b"), "c"), "abc");
}

TEST(Text, FindsWhateverTheCase) {
    const char* name = "C=IT/cn=Rossi";
    EXPECT_EQ(strstrICase(name, "/CN="), name + 4);
    EXPECT_EQ(strstrICase(name, "/OU="), nullptr);
    EXPECT_EQ(strstrICase(name, ""), name);
}

TEST(Text, MeasuresUpToTheLastByteThatIsNotZero) {
    char bytes[] = {'a', 0, 'b', 0, 0};
    EXPECT_EQ(HexLen(bytes, 5), 3);
    char zeros[3] = {};
    EXPECT_EQ(HexLen(zeros, 3), 0);
    EXPECT_EQ(HexLen(bytes, -2), -2);
}

std::string unescaped(std::string text) {
    const std::unique_ptr<char, decltype(&std::free)> result(UnEscape(text.data()), &std::free);
    return result.get();
}

TEST(Text, DecodesEscapesAndKeepsBrokenOnes) {
    EXPECT_EQ(unescaped("x%41%7ez"), "xA~z");
    EXPECT_EQ(unescaped("%4"), "%4");
    EXPECT_EQ(unescaped("a%"), "a%");
    EXPECT_EQ(changed(Converte, "a+b%2Bc"), "a b+c");
}

struct Field {
    int result;
    std::string value;
};

Field option(std::string text, std::string name, std::string pair = "&", std::string value = "=") {
    std::string out(text.size() + 1, '?');
    const int result = NWGetOpt(text.data(), name.data(), out.data(), pair.data(), value.data());
    return {result, out.c_str()};
}

TEST(Fields, AreFoundAtTheirStartOnly) {
    EXPECT_EQ(option("ab=2&b=3", "b").value, "3");
    EXPECT_EQ(option("ab=2", "b").result, -1);
    EXPECT_EQ(option("bc=1; b = 2 ", "b", ";").value, "2");
    EXPECT_EQ(option("b", "b").result, -4);
    EXPECT_EQ(option("x: b=1\nb=2", "b", "\n").value, "1");
    EXPECT_EQ(option("b=", "b").value, "");
    EXPECT_EQ(option("b=1", "b", "&", "").result, -4);
    EXPECT_EQ(option("a=1", "").result, -4);
    EXPECT_EQ(option(std::string(5000, 'n') + "=1", std::string(5000, 'n')).value, "1");
    char out[4];
    EXPECT_EQ(NWGetOpt(nullptr, out, out, out, out), -1);
}

TEST(Fields, ValuesAreDecodedAndTrimmed) {
    char text[] = "a=1&b=x%41y+z+&d=%20e", b[] = "b", c[] = "c", d[] = "d", out[32];
    EXPECT_EQ(Valore(text, b, out), 0);
    EXPECT_STREQ(out, "xAy z");
    EXPECT_EQ(Valore(text, c, out), 0);
    EXPECT_STREQ(out, "");
    Valore(text, d, out);
    EXPECT_STREQ(out, "e");
}

TEST(Numbers, DatesAndEncodings) {
    char date[] = "31/12/2024", shortDate[] = "31/12", empty[] = "", hundred[] = "100",
         huge[] = "99999999999999999999";
    EXPECT_EQ(DataToLong(date), 20241231);
    EXPECT_EQ(DataToLong(shortDate), 1231);
    EXPECT_EQ(DataToLong(empty), 0);
    EXPECT_STREQ(X1(hundred), "16379");
    EXPECT_STREQ(X2(empty), "");
    EXPECT_STREQ(X2(X1(hundred)), "472191");
    EXPECT_STREQ(x1, "16379");
    EXPECT_STREQ(XX(x1, x1), "472191") << "text and output may be one";
    EXPECT_NE(std::string(X3(huge)), "");
}

} // namespace
