#include "words/words.h"

#include <gtest/gtest.h>

namespace {

TEST(WordsTest, LosesNoSentenceWhoseValuesAreOthers) {
    EXPECT_EQ(words::of(zvhost::Sentence{"pin-wrong", {{"reason", "."}}}),
              "The PIN is wrong{reason}; {tries}.");
    EXPECT_EQ(words::of(zvhost::Sentence{"no-such-sentence", {}}), "no-such-sentence");
}

} // namespace
