#pragma once

#include <string>

namespace zvhost {

// Path of the running program; empty where the system does not tell.
[[nodiscard]] std::string program_path();
// Its folder.
[[nodiscard]] std::string program_folder();

// Path of a PKCS#11 module, searched for where the modules of cards are; empty when there is none.
[[nodiscard]] std::string find_module(const std::string& file_name);

} // namespace zvhost
