#include "exit_codes.h"
#include "simcard/virtual/virtual_readers.h"

#include <iostream>
#include <stdexcept>

namespace {

constexpr const char* USAGE =
    "zvvirtualreaders [--name NAME] [--card ATR]... COMMAND [ARGUMENT...]\n"
    "Runs a command where the PC/SC service has two virtual readers and nothing else. No other program sees "
    "them.\n"
    "  --name NAME  they are called NAME with \" 00 00\" and \" 00 01\" behind it (Desk Reader)\n"
    "  --card ATR   card in the first reader, given again in the second; it knows no command. The command "
    "may put\n"
    "               others in with zvvirtualcard\n"
    "Exit codes: the command's; 1 failed, 2 mistyped, 127 the command cannot be started.\n";

struct Order {
    std::string name = "Desk Reader";
    std::vector<std::string> cards;
    std::vector<std::string> command;
};

// @throws std::invalid_argument
Order parse(const std::vector<std::string>& arguments) {
    Order order;
    auto at = arguments.begin();
    for (; at != arguments.end() && at->starts_with("--"); ++at) {
        const bool name = *at == "--name";
        if ((!name && *at != "--card") || ++at == arguments.end()) throw std::invalid_argument("option");
        if (name)
            order.name = *at;
        else
            order.cards.push_back(*at);
    }
    order.command.assign(at, arguments.end());
    const bool writable = !order.name.empty() && order.name.find_first_of("\"\n") == std::string::npos;
    if (!writable || order.command.empty() || order.cards.size() > simcard::VirtualReaders::COUNT)
        throw std::invalid_argument("order");
    return order;
}

int run(const Order& order) {
    if (const std::string reason = simcard::VirtualReaders::missing(); !reason.empty())
        throw std::runtime_error(reason);
    simcard::VirtualReaders readers;
    readers.start(order.name);
    for (int reader = 0; const std::string& atr : order.cards)
        readers.insert(reader++, {"--atr", atr});
    return simcard::Child(order.command).wait();
}

} // namespace

int main(int argc, char** argv) {
    try {
        const std::vector<std::string> arguments(argv + 1, argv + argc);
        if (arguments == std::vector<std::string>{"--help"}) {
            std::cout << USAGE;
            return static_cast<int>(zv::ExitCode::done);
        }
        return run(parse(arguments));
    } catch (const std::invalid_argument&) {
        std::cerr << USAGE;
        return static_cast<int>(zv::ExitCode::refused);
    } catch (const std::exception& reason) {
        std::cerr << reason.what() << '\n';
        return static_cast<int>(zv::ExitCode::failed);
    }
}
