#include "simcard/authority/errors.h"
#include "simcard/tool/command_line.h"

#include <iostream>

namespace {

zv::ExitCode run(int argc, char** argv) {
    try {
        return simcard::run_command_line(argc, argv);
    } catch (const simcard::Refusal& reason) {
        std::cerr << reason.what() << '\n';
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
