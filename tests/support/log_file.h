#pragma once

#include "routines.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>

namespace zvtest {

/// A log of the test's own in place of the user's, for as long as it lives; then nothing is logged.
class LogFile {
  public:
    LogFile() {
        std::string name = std::filesystem::temp_directory_path() / "zv-log-XXXXXX";
        if (::mkdtemp(name.data()) == nullptr) std::abort();
        folder_ = name;
        use(folder_ / "zvRenew.log");
    }
    ~LogFile() {
        getLogPath()[0] = '\0';
        std::error_code error;
        std::filesystem::remove_all(folder_, error);
    }
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    void use(const std::filesystem::path& path) {
        path_ = path;
        std::strcpy(getLogPath(), path.c_str());
    }
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
    void clear() { std::filesystem::remove(path_); }

    [[nodiscard]] std::string raw() const {
        std::ifstream file(path_, std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }
    /// What was logged, the times gone: "[]: line" and "** title".
    [[nodiscard]] std::string text() const {
        static const std::regex line(R"(\[\d\d \w{3} \d{4} \d\d:\d\d:\d\d\]: )");
        static const std::regex title(R"(\*{10} - \d\d/\w{3}/\d{4} \d\d:\d\d:\d\d - )");
        return std::regex_replace(std::regex_replace(raw(), line, "[]: "), title, "** ");
    }

  private:
    std::filesystem::path folder_, path_;
};

} // namespace zvtest
