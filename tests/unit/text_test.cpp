#include "routines/util.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>

namespace {

template <typename Helper> std::string changed(Helper helper, std::string text) {
    helper(text.data());
    return text.c_str();
}

TEST(Text, IsChangedInPlace) {
    EXPECT_EQ(changed(AllTrim, "  \ta b\t  "), "\ta b\t") << "blanks alone";
    EXPECT_EQ(changed(_strupr, "libX.so\xE8"), "LIBX.SO\xE8");
    EXPECT_EQ(changed(VirgolaToPunto, "1,2,"), "1.2.");
    EXPECT_EQ(changed(Converte, "a+b%2Bc"), "a b+c");
}

// Also where a hexadecimal prefix or another radix is asked for.
TEST(Text, NumbersAreDecimal) {
    char text[32];
    EXPECT_STREQ(_itoa(-255, text, 16), "-255");
    EXPECT_STREQ(_ltoa(LONG_MIN, text, 2), "-9223372036854775808");
    EXPECT_STREQ(ItoA(7), "7");
    EXPECT_STREQ(ItoAHex(16), "16");
    EXPECT_STREQ(LtoA(4294967296L), "4294967296");
    EXPECT_STREQ(LtoAHex(4294967296L), "4294967296");
    EXPECT_STREQ(ILtoAbuffHex, "4294967296");
    EXPECT_STREQ(CatItoAHex(text, "n", -1), "n0x-1");
    EXPECT_STREQ(CatItoAHex1("Errore = ", INT_MIN), "Errore = 0x-2147483648");
    EXPECT_STREQ(CatItoAHex2("n", 3), "n0x3");
    // Two of one entry do not share a buffer.
    const char *first = CatLtoAHex1("hObject", 1), *second = CatLtoAHex2("Errore = ", 0x80000001L);
    EXPECT_STREQ(first, "hObject0x1");
    EXPECT_STREQ(second, "Errore = 0x2147483649");
}

std::string unescaped(std::string text) {
    const std::unique_ptr<char, decltype(&std::free)> result(UnEscape(text.data()), &std::free);
    return result.get();
}

TEST(Text, DecodesEscapesAndKeepsBrokenOnes) {
    EXPECT_EQ(unescaped("x%41%7ez"), "xA~z");
    EXPECT_EQ(unescaped("%4"), "%4");
    EXPECT_EQ(unescaped("a%"), "a%");
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
    char text[] = "a=1&b=x%41y+z+", b[] = "b", out[32];
    Valore(text, b, out);
    EXPECT_STREQ(out, "xAy z") << "decoded and trimmed";
}

TEST(Numbers, DatesAndEncodings) {
    char date[] = "31/12/2024", short_date[] = "31/12", empty[] = "", hundred[] = "100",
         huge[] = "99999999999999999999";
    EXPECT_EQ(DataToLong(date), 20241231);
    EXPECT_EQ(DataToLong(short_date), 1231);
    EXPECT_EQ(DataToLong(empty), 0);
    char bytes[] = {'a', 0, 'b', 0, 0};
    EXPECT_EQ(HexLen(bytes, 5), 3) << "up to the last byte that is not zero";
    EXPECT_STREQ(X1(hundred), "16379");
    EXPECT_STREQ(X2(empty), "");
    EXPECT_STREQ(X2(X1(hundred)), "472191");
    EXPECT_STREQ(x1, "16379");
    EXPECT_STREQ(XX(x1, x1), "472191") << "text and output may be one";
    EXPECT_NE(std::string(X3(huge)), "");
}

} // namespace
