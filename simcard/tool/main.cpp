#include "simcard/authority/errors.h"
#include "simcard/common/card_folder.h"
#include "simcard/tool/commands.h"

#include <iostream>

namespace {

enum ExitCode { done = 0, refused = 1, wrong_usage = 2, failed = 3 };

constexpr const char* description =
    "Makes simulated smart cards for demonstrations and tests, and plays the authority that certifies them.\n"
    "Exit codes: 0 done, 1 refused, 2 wrong usage, 3 failed.";

int run(int argc, char** argv) {
    CLI::App program(description, "zvsimcard-tool");
    simcard::Home home;
    program.add_option("--home", home.given,
                       "Folder of cards (default: $ZVSIMCARD_HOME, else the user's own)");
    program.require_subcommand(1);
    program.fallthrough();
    simcard::add_create_command(program, home);
    simcard::add_list_command(program, home);
    simcard::add_card_commands(program, home);
    simcard::add_issue_command(program, home);
    simcard::add_config_command(program, home);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? done : wrong_usage;
    }
    return done;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const simcard::Refusal& reason) {
        std::cerr << reason.what() << '\n';
        return refused;
    } catch (const std::exception& reason) {
        std::cerr << reason.what() << '\n';
        return failed;
    }
}
