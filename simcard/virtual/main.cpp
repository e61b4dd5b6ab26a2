#include "simcard/virtual/play.h"
#include "simcard/virtual/stop_signal.h"

#include <iostream>

namespace {

enum ExitCode { done = 0, wrong_usage = 2, failed = 3 };

constexpr std::chrono::seconds PATIENCE{5};

int run(const std::vector<std::string>& arguments) {
    const simcard::Options options = simcard::parse_options(arguments);
    if (options.help) {
        std::cout << simcard::usage();
        return done;
    }
    const auto applet = simcard::make_applet(options);
    simcard::hold_stop_signals();
    simcard::ReaderLink reader(options.port, PATIENCE);
    simcard::play(reader, options, *applet);
    return done;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run({argv + 1, argv + argc});
    } catch (const simcard::WrongUsage& reason) {
        std::cerr << reason.what() << "\n\n" << simcard::usage();
        return wrong_usage;
    } catch (const std::exception& reason) {
        std::cerr << reason.what() << '\n';
        return failed;
    }
}
