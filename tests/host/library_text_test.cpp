#include "host/library_text.h"
#include "host/printable.h"
#include "words/words.h"
#include "zvRenew.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace zvhost;

std::string told(int code) {
    return words::of(library_reason(code));
}

class LibraryTextTest : public testing::Test {
  protected:
    LibraryTextTest() {
        loadErrorCodes();
        forget_library_texts();
    }
    ~LibraryTextTest() override { forget_library_texts(); }
};

TEST_F(LibraryTextTest, QuotesWhatTheLibraryLeftOnOneLineAndNothingBehindIt) {
    std::strcpy(szBuffErr, "Errore nella mininfo");
    EXPECT_EQ(told(1), ": \"Errore nella mininfo\" (error in the command to the card) (0x1)");
    std::strcpy(szSockMsg, "Non so.\r\nRiprovare\n (x)");
    EXPECT_EQ(told(0xA0),
              ": \"Non so. Riprovare (x)\", \"Errore nella mininfo\" (error in the command to the card) "
              "(0xa0, \"Pin errato\" (wrong PIN))");
    std::strcpy(szSockMsg, "Errore nel login alla smartcard (Pin errato)");
    szBuffErr[0] = '\0';
    EXPECT_EQ(told(0xA0), ": \"Errore nel login alla smartcard (Pin errato)\" "
                          "(error in the login to the card (wrong PIN)) (0xa0)");
    forget_library_texts();
    std::memset(szBuffErr, 'x', sizeof szBuffErr);
    EXPECT_EQ(told(1), ": \"" + std::string(sizeof szBuffErr, 'x') + "\" (0x1)");
}

TEST_F(LibraryTextTest, FallsBackOnTheCodeAndStaysInsideTheTable) {
    EXPECT_EQ(told(0xA0), ": \"Pin errato\" (wrong PIN) (0xa0)");
    for (const int code : {1, 100, -1, -10000, 4, 511, 512, 0x2029, 0x7FFFFFFF}) {
        const std::string reason = told(code);
        EXPECT_EQ(reason.substr(0, 2), ": ") << code;
        EXPECT_EQ(reason.find('"'), std::string::npos) << code << reason;
    }
}

TEST(PrintableTest, KeepsWhatATerminalWouldObeyOut) {
    EXPECT_EQ(printable("DS0\x1B[2J\r\x7F città\n"), "DS0?[2J?? città\n");
    // A control character in two bytes, a cut one, half a pair, a slash in two bytes, one past the last.
    EXPECT_EQ(printable("\xC2\x9B"
                        "2J \xE2\x82 \xED\xA0\x80 \xC0\xAF \xF4\x90\x80\x80 €\xF0\x9F\x98\x80\xE8"),
              "??2J ?? ??? ?? ???? €\xF0\x9F\x98\x80?");
}

} // namespace
