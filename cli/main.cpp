#include "cli/program.h"

int main(int argc, char** argv) {
#ifdef ZV_DUMPABLE
    return cli::run_program(argc, argv, cli::Memory::readable);
#else
    return cli::run_program(argc, argv, cli::Memory::closed);
#endif
}
