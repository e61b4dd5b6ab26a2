// The PIN typed at a terminal.
#include "tests/cli/program.h"

#ifdef __APPLE__
#include <util.h>
#else
#include <pty.h>
#endif

namespace {

using zvtest::ProgramTest;

class PromptProgramTest : public ProgramTest {
  protected:
    struct Dialogue {
        int code;
        std::string screen;
    };

    // Types `keys` once the prompt is there; gives all that the terminal showed.
    Dialogue type(const std::string& keys) {
        const std::string shell_command = command("list");
        int terminal = -1;
        const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
        if (child == 0) {
            ::alarm(60);
            ::execl("/bin/sh", "sh", "-c", shell_command.c_str(), nullptr);
            ::_exit(127);
        }
        Dialogue dialogue{-1, {}};
        bool typed = false;
        std::array<char, 512> piece{};
        for (ssize_t got = 0; (got = ::read(terminal, piece.data(), piece.size())) > 0;) {
            dialogue.screen.append(piece.data(), static_cast<std::size_t>(got));
            if (typed || dialogue.screen.find("\": ") == std::string::npos) continue;
            typed = true;
            EXPECT_EQ(::write(terminal, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        ::close(terminal);
        if (WIFEXITED(status)) dialogue.code = WEXITSTATUS(status);
        return dialogue;
    }
};

TEST_F(PromptProgramTest, TakesAPinWithoutShowingIt) {
    make_card();
    const Dialogue dialogue = type("nonsense\x15"
                                   "12345679\x7F"
                                   "8\n");
    EXPECT_EQ(dialogue.code, 0) << dialogue.screen;
    EXPECT_NE(dialogue.screen.find("PIN of the card in \"Simulated Reader 0\""), std::string::npos);
    EXPECT_EQ(dialogue.screen.find("1234"), std::string::npos) << dialogue.screen;
    EXPECT_EQ(dialogue.screen.find("nonsense"), std::string::npos) << dialogue.screen;
}

TEST_F(PromptProgramTest, RefusesAnEmptyPinAndStopsWhenToldTo) {
    make_card();
    for (const char* keys : {"\n", "\x04", "1234\x03", "12345678 \r"}) {
        EXPECT_EQ(type(keys).code, 2);
        EXPECT_FALSE(std::filesystem::exists(trace())) << "the card's module was called";
    }
}

} // namespace
