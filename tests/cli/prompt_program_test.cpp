// The PIN typed at a terminal.
#include "tests/cli/program.h"

#include <sys/stat.h>
#include <termios.h>

#include <csignal>

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
        bool echo = false; // the terminal's afterwards
    };

    // Types `keys` once the prompt is there, or sends a signal; gives all that the terminal showed.
    Dialogue type(const std::string& keys, int signal = 0) {
        const std::string shell_command = "ulimit -S -c $(ulimit -H -c); exec " + command("list");
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
            EXPECT_TRUE(is_closed(child));
            if (signal != 0) ::kill(child, signal);
            EXPECT_EQ(::write(terminal, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        termios settings{};
        dialogue.echo = ::tcgetattr(terminal, &settings) == 0 && (settings.c_lflag & ECHO) != 0;
        ::close(terminal);
        if (WIFEXITED(status)) dialogue.code = WEXITSTATUS(status);
        return dialogue;
    }
    // Whether nobody can read a process's memory, and no core is written of it.
    static bool is_closed(pid_t process) {
#ifdef __linux__
        const std::string folder = "/proc/" + std::to_string(process);
        struct stat environment {};
        std::string limits = simcard::read_file(folder + "/limits");
        limits = limits.substr(limits.find("Max core file size") + 18);
        return ::stat((folder + "/environ").c_str(), &environment) == 0 && environment.st_uid == 0 &&
               std::stol(limits) == 0;
#else
        return process > 0;
#endif
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

TEST_F(PromptProgramTest, StopsWhenToldToAndLeavesTheTerminalAsItWas) {
    make_card();
    const auto stops = [&](const Dialogue& dialogue) {
        EXPECT_EQ(dialogue.code, 2) << dialogue.screen;
        EXPECT_TRUE(dialogue.echo);
        EXPECT_EQ(simcard::read_file(trace()).find("C_Login"), std::string::npos);
    };
    for (const char* keys : {"\n", "\x04", "12345678\x04", "1234\x03", "1234\x1C", "12345678 \r"})
        stops(type(keys));
    for (const int signal : {SIGTERM, SIGHUP, SIGINT, SIGQUIT})
        stops(type("1234", signal));
}

TEST_F(PromptProgramTest, SaysHowItStandsWithThePinBeforeItAsks) {
    make_card();
    EXPECT_EQ(type("99999999\n").code, 1);
    const std::string screen = type("12345678\n").screen;
    EXPECT_LT(screen.find("fewer tries are left"), screen.find("PIN of the card")) << screen;
    for (const char* command : {"list", "list", "list --final-try"}) {
        give_pin("99999999");
        EXPECT_EQ(with_pin(command).code, 1);
    }
    const Dialogue locked = type("12345678\n");
    EXPECT_EQ(locked.code, 2);
    EXPECT_EQ(locked.screen.find("PIN of the card"), std::string::npos) << locked.screen;
}

} // namespace
