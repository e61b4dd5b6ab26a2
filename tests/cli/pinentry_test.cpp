// What a program that asks for the PIN may answer.
#include "cli/pinentry.h"
#include "cli/signals.h"
#include "host/error.h"
#include "words/words.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

using namespace std::chrono_literals;
using zvhost::Error;
using zvhost::Pin;
using zvhost::PinState;

zvhost::CardFacts card_of_few_tries() {
    zvhost::CardState state;
    state.label = "Card \"A\"\x1B";
    state.serial = "0123";
    state.pin = PinState::low;
    return {"Reader 100%", "module", false, state};
}

// A program that notes what it is told. Each GETPIN it answers by the next of some commands of the shell, everything else
// with OK.
class PinentryTest : public testing::Test {
  protected:
    PinentryTest() { cli::let_writes_fail(); }
    ~PinentryTest() override { std::filesystem::remove_all(folder); }

    Pin ask(const std::string& first, const std::string& second = "exit 1") {
        std::filesystem::create_directories(folder);
        std::ofstream(program) << "#!/bin/sh\necho OK here I am\nwhile read -r line; do\n  echo \"$line\" >>"
                               << folder << "/told\n  case $asked$line in\n"
                               << "  GETPIN) asked=1; " << first << " ;;\n  1GETPIN) " << second
                               << " ;;\n  *) echo OK ;;\n  esac\ndone\n";
        ::chmod(program.c_str(), 0700);
        return cli::pin_from_pinentry(program, card, {30s, 30s});
    }
    // Why there was no PIN.
    std::string refusal(const std::string& answer) {
        try {
            return "taken: " + std::string(ask(answer).view());
        } catch (const Error& error) {
            EXPECT_EQ(error.exit, zvhost::Exit::refused);
            return words::of(error.sentence);
        }
    }
    std::string told() {
        std::ifstream file(folder + "/told");
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::string folder = testing::TempDir() + "zvrenew-pinentry-" + std::to_string(::getpid());
    std::string program = folder + "/pinentry";
    zvhost::CardFacts card = card_of_few_tries();
};

TEST_F(PinentryTest, GivesAPinAndShowsTheCardAndItsTries) {
    EXPECT_EQ(ask("echo '# a remark'; echo 'S STATE x'; echo 'D 12%2534'; echo D 5; echo OK").view(),
              "12%345");
    const std::string all = told();
    EXPECT_NE(all.find("SETDESC PIN of the card 0123 (\"Card \"A\"?\") in \"Reader 100%25\".%0AThe card says "
                       "that fewer"),
              std::string::npos)
        << all;
}

TEST_F(PinentryTest, AsksAgainForAPinOfABadForm) {
    EXPECT_EQ(ask("echo 'D 12345 '; echo OK", "echo D 12345; echo OK").view(), "12345");
    EXPECT_NE(told().find("SETERROR The PIN ends with a blank"), std::string::npos) << told();
    EXPECT_EQ(refusal("echo OK"),
              "The PIN could not be asked for: the program " + program + " ended without an answer.");
}

TEST_F(PinentryTest, TakesNoAnswerThatIsNone) {
    EXPECT_EQ(refusal("echo ERR 83886179 Operation cancelled"), "Stopped at the PIN.");
    EXPECT_EQ(refusal("echo ERR 83886142 Timeout"), "Nobody gave the PIN.");
    EXPECT_EQ(refusal("echo ERR 83918950 No terminal"), "The PIN could not be asked for (No terminal).");
    const auto has = [&](const std::string& answer, const std::string& reason) {
        const std::string sentence = refusal(answer);
        EXPECT_NE(sentence.find(reason), std::string::npos) << answer << ": " << sentence;
        EXPECT_EQ(sentence.find("qqq"), std::string::npos) << "the PIN is not shown";
    };
    has("echo D qqq%7; echo OK", "makes no sense");
    has("echo qqq; echo OK", "makes no sense");
    has("printf 'D qqq'; exit", "ended without an answer");
    has("head -c 3000 /dev/zero | tr '\\0' q; echo; echo OK", "makes no sense");
}

TEST_F(PinentryTest, DoesNotWaitForOneThatIsNoneOrNeverAnswers) {
    program = "/bin/cat";
    EXPECT_THROW(static_cast<void>(cli::pin_from_pinentry("/bin/cat", card, {1ms, 1ms})), Error);
    EXPECT_THROW(static_cast<void>(cli::pin_from_pinentry("/bin/true", card)), Error);
    EXPECT_THROW(static_cast<void>(cli::pin_from_pinentry(folder + "/none", card)), Error);
}

} // namespace
