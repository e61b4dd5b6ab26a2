#include "host/help_desk.h"

#include "host/card_table.h"
#include "host/log_folder.h"
#include "host/new_file.h"

#include <sys/utsname.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace zvhost {
namespace {

// What changes where something is found, how it behaves, or what it says.
constexpr const char* VARIABLES[] = {"HOME",
                                     "LANG",
                                     "LANGUAGE",
                                     "LC_ALL",
                                     "LC_MESSAGES",
                                     "LD_LIBRARY_PATH",
                                     "LD_PRELOAD",
                                     "OPENSC_CONF",
                                     "OPENSSL_CONF",
                                     "OPENSSL_MODULES",
                                     "PATH",
                                     "PCSCLITE_CSOCK_NAME",
                                     "SOFTHSM2_CONF",
                                     "TERM",
                                     "TZ",
                                     "XDG_CONFIG_HOME",
                                     "XDG_DATA_HOME",
                                     "XDG_STATE_HOME",
                                     "ZVCRYPT_CONF",
                                     "ZVSIMCARD_HOME",
                                     "ZVSIMCARD_RULES"};

std::string whole_file(const std::string& file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

std::string system_text() {
    utsname name{};
    std::string text;
    if (::uname(&name) == 0)
        text = std::string(name.sysname) + " " + name.release + " " + name.machine + "\n";
    std::istringstream lines(whole_file("/etc/os-release"));
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("PRETTY_NAME=")) text += line + "\n";
    return text;
}

std::string environment_text() {
    std::string text;
    for (const char* variable : VARIABLES)
        if (const char* value = std::getenv(variable)) text += std::string(variable) + "=" + value + "\n";
    return text;
}

std::string table_text() {
    const CardTable table = read_card_table();
    return table.file.empty() || table.file == "/dev/null" ? "" : whole_file(table.file);
}

} // namespace

std::vector<HelpDeskText> help_desk_texts() {
    return {{"system", system_text()},
            {"environment", environment_text()},
            {"card-table", table_text()},
            {"log", log_path().empty() ? "" : whole_file(log_path())}};
}

void save_for_help_desk(const std::string& file, std::string_view text) {
    NewFile(file).save(text, NewFile::For::owner);
}

} // namespace zvhost
