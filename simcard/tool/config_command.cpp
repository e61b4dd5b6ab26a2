#include "simcard/authority/files.h"
#include "simcard/tool/commands.h"
#include "simcard/tool/reader_configuration.h"

#include <iostream>

namespace simcard {

void write_configuration(const std::string& file, const std::filesystem::path& home) {
    const std::string text = reader_configuration(home);
    if (file.empty())
        std::cout << text;
    else
        write_file(file, text, Access::everyone_reads);
}

} // namespace simcard
