#include "exit_codes.h"
#include "simcard/virtual/play.h"
#include "simcard/virtual/stop_signal.h"

#include <iostream>

namespace {

constexpr std::chrono::seconds PATIENCE{5};

void play_card(const std::vector<std::string>& arguments) {
    const simcard::Options options = simcard::parse_options(arguments);
    if (options.help) {
        std::cout << simcard::usage();
        return;
    }
    const auto applet = simcard::make_applet(options);
    simcard::hold_stop_signals();
    simcard::ReaderLink reader(options.port, PATIENCE);
    simcard::play(reader, options, *applet);
}

zv::ExitCode run(int argc, char** argv) {
    try {
        play_card({argv + 1, argv + argc});
        return zv::ExitCode::done;
    } catch (const simcard::WrongUsage& reason) {
        std::cerr << reason.what() << "\n\n" << simcard::usage();
        return zv::ExitCode::refused;
    } catch (const std::exception& reason) {
        std::cerr << reason.what() << '\n';
        return zv::ExitCode::failed;
    }
}

} // namespace

int main(int argc, char** argv) {
    return static_cast<int>(run(argc, argv));
}
