#include "simcard/virtual/virtual_readers.h"

#include <iostream>

namespace {

enum ExitCode { done = 0, wrong_usage = 2, failed = 3 };

constexpr const char* usage =
    "zvvirtualreaders [--name NAME] COMMAND [ARGUMENT...]\n"
    "Runs a command where the PC/SC service has two virtual readers, \"NAME 00 00\" and \"NAME 00 01\" "
    "(\"Desk\n"
    "Reader\" without a name), and nothing else: no other program sees them, and the command sees no other "
    "reader.\n"
    "zvvirtualcard puts a card into them.\n"
    "Exit codes: the command's; 2 wrong usage, 3 failed, 127 the command cannot be started.\n";

int run(std::vector<std::string> arguments) {
    if (arguments.size() == 1 && arguments[0] == "--help") {
        std::cout << usage;
        return done;
    }
    std::string name = "Desk Reader";
    if (arguments.size() >= 2 && arguments[0] == "--name") {
        name = arguments[1];
        arguments.erase(arguments.begin(), arguments.begin() + 2);
    }
    if (arguments.empty() || arguments[0].starts_with('-') || name.empty() ||
        name.find_first_of("\"\n") != std::string::npos) {
        std::cerr << usage;
        return wrong_usage;
    }
    if (const std::string reason = simcard::VirtualReaders::missing(); !reason.empty())
        throw std::runtime_error(reason);
    simcard::VirtualReaders readers;
    readers.start(name);
    return simcard::Child(arguments).wait();
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run({argv + 1, argv + argc});
    } catch (const std::exception& reason) {
        std::cerr << reason.what() << '\n';
        return failed;
    }
}
