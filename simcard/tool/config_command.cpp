#include "simcard/authority/files.h"
#include "simcard/tool/commands.h"
#include "simcard/tool/reader_configuration.h"

#include <iostream>
#include <memory>

namespace simcard {

void add_config_command(CLI::App& program, const Home& home) {
    CLI::App& command = *program.add_subcommand("config", "Writes the zvcrypt.conf that brings in the cards");
    const auto file = std::make_shared<std::string>();
    command.add_option("--out", *file, "File to write (default: standard output)");
    command.callback([file, &home] {
        const std::string text = reader_configuration(home.path());
        if (file->empty())
            std::cout << text;
        else
            write_file(*file, text, Access::everyone_reads);
    });
}

} // namespace simcard
