#include "simcard/authority/errors.h"
#include "simcard/tool/command_line.h"

#include <iostream>

int main(int argc, char** argv) {
    try {
        return simcard::run_command_line(argc, argv);
    } catch (const simcard::Refusal& reason) {
        std::cerr << reason.what() << '\n';
        return simcard::refused;
    } catch (const std::exception& reason) {
        std::cerr << reason.what() << '\n';
        return simcard::failed;
    }
}
