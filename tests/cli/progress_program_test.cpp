// What is shown while the card works, at a terminal.
#include "tests/cli/program.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <functional>

#ifdef __APPLE__
#include <util.h>
#else
#include <pty.h>
#endif

namespace {

using zvtest::ProgramTest;
namespace fs = std::filesystem;

class ProgressProgramTest : public ProgramTest {
  protected:
    // What is done once a text has come.
    struct Cue {
        std::string text;
        std::function<void(int terminal)> act;
    };
    struct Shown {
        int code = -1;
        std::string screen;

        [[nodiscard]] bool has(const std::string& text) const {
            return screen.find(text) != std::string::npos;
        }
    };

    // Runs a command at a terminal of its own.
    Shown at_terminal(const std::string& shell_command, const std::vector<Cue>& cues) {
        int terminal = -1;
        const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
        if (child == 0) {
            ::alarm(60);
            ::execl("/bin/sh", "sh", "-c", ("cd " + work().string() + " && exec " + shell_command).c_str(),
                    nullptr);
            ::_exit(127);
        }
        Shown shown;
        auto cue = cues.begin();
        std::array<char, 512> piece{};
        for (ssize_t got = 0; (got = ::read(terminal, piece.data(), piece.size())) > 0;) {
            shown.screen.append(piece.data(), static_cast<std::size_t>(got));
            for (; cue != cues.end() && shown.has(cue->text); ++cue)
                cue->act(terminal);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        ::close(terminal);
        if (WIFEXITED(status)) shown.code = WEXITSTATUS(status);
        return shown;
    }
    [[nodiscard]] std::string with_pin_file(const std::string& arguments) const {
        return command(arguments + " --pin-file " + pin_file().string());
    }
    // Ends a command while the card makes keys, which it looks for in a pipe: it makes them when there is nothing in that.
    Shown stopped_while_making_keys(const std::string& command) {
        EXPECT_EQ(::mkfifo(file("keys").c_str(), 0600), 0);
        const auto press_ctrl_c = [](int terminal) { EXPECT_EQ(::write(terminal, "\x03", 1), 1); };
        return at_terminal("env ZVSIMCARD_KEYS=keys " + command,
                           {{"The card is at work", press_ctrl_c},
                            {"It stops when", [this](int /*terminal*/) { let_card_go_on(); }}});
    }
    void let_card_go_on() const {
        const int pipe = ::open(file("keys").c_str(), O_WRONLY | O_CLOEXEC);
        fs::remove(file("keys"));
        ::close(pipe);
    }
};

TEST_F(ProgressProgramTest, AnswersCtrlCAtOnceAndStopsAfterTheStep) {
    make_card();
    const Shown shown = stopped_while_making_keys(with_pin_file("request signature --out request"));
    EXPECT_EQ(shown.code, 0) << "the request was the card's last step: " << shown.screen;
    EXPECT_TRUE(shown.has("its last step was under way. That was finished")) << shown.screen;
    EXPECT_TRUE(fs::exists(file("request")));
    EXPECT_FALSE(shown.has("the last time"));

    const Shown again = at_terminal(with_pin_file("request signature --new-pair --force"), {});
    EXPECT_TRUE(again.has("(the last time it took"));
    EXPECT_FALSE(again.has("It was to stop")) << again.screen;
    EXPECT_FALSE(with_pin("request signature --new-pair --force").says("at work")) << "no terminal";
}

TEST_F(ProgressProgramTest, StopsARenewalAfterTheStepAndGoesOn) {
    make_card();
    const std::string renew = with_pin_file("renew signature --ca-command 'cat >r && " ZVSIMCARD_TOOL
                                            " issue r --out c && cat c && rm c'");
    const Shown stopped = stopped_while_making_keys(renew);
    EXPECT_EQ(stopped.code, 1) << stopped.screen;
    EXPECT_TRUE(stopped.has("To go on, run the same command again.")) << stopped.screen;
    EXPECT_FALSE(fs::exists(file("r"))) << "nobody was asked";
    EXPECT_EQ(at_terminal(renew, {}).code, 0) << "as advised";
}

TEST_F(ProgressProgramTest, CountsTheStepsOfTheWholeRenewal) {
    make_card();
    const std::string renew = with_pin_file("renew signature --remove-old --to r --from c");
    EXPECT_TRUE(at_terminal(renew, {}).has("work, step 1 of 4: 0 s"));
    ASSERT_EQ(tool("issue r --out c").code, 0);
    const Shown shown = at_terminal(renew, {});
    EXPECT_EQ(shown.code, 0) << shown.screen;
    for (const char* step : {"step 2 of 4", "step 3 of 4", "step 4 of 4"})
        EXPECT_TRUE(shown.has(step)) << step << shown.screen;
    ASSERT_EQ(with_pin("request signature --force --out other").code, 0);
    for (const char* removing : {"pending discard DS4", "remove DS3 --last"})
        EXPECT_TRUE(at_terminal(with_pin_file(removing), {}).has("The card is at work: 0 s")) << removing;
}

} // namespace
