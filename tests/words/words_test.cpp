#include "words/quotes.h"
#include "words/words.h"

#include <gtest/gtest.h>

namespace {

TEST(WordsTest, LosesNoSentenceWhoseValuesAreOthers) {
    EXPECT_EQ(words::of(zvhost::Sentence{"pin-wrong", {{"reason", "."}}}),
              "The PIN is wrong{reason}; {tries}.");
    EXPECT_EQ(words::of(zvhost::Sentence{"no-such-sentence", {}}), "no-such-sentence");
}

TEST(WordsTest, TellsAWindowWhatItCanDo) {
    const zvhost::Sentence repeat{"run-again", {}};
    const zvhost::Sentence plain{"no-reader", {}};
    EXPECT_EQ(words::of(repeat), "Run the command again.");
    words::face_is(words::Face::window);
    EXPECT_EQ(words::of(repeat), "Try again.");
    EXPECT_EQ(words::of(plain), "There is no card reader.");
    words::face_is(words::Face::terminal);
}

TEST(WordsTest, KnowsWhatTheLibrarySays) {
    EXPECT_EQ(words::meaning_of("PIN errato (C_Login: 0xA0). Il PIN ora è bloccato"),
              "wrong PIN (C_Login: 0xA0); the PIN is locked now");
    EXPECT_EQ(words::meaning_of("Impossibile aprire /a: permesso negato"),
              "/a cannot be opened: permission denied");
    for (const char* text : {"", "x", "Pin errato!", "x (C_Login: 0xA0)"})
        EXPECT_EQ(words::meaning_of(text), "") << text;
}

} // namespace
