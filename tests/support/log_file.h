#pragma once

#include "routines/diag.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace zvtest {

// A log of the test's own in place of the user's, for as long as it lives; then nothing is logged.
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
    // What was logged, the times gone: "[]: line" and "** title".
    [[nodiscard]] std::string text() const {
        static const std::string title = "********** - 24/Nov/2026 22:05:00 - ",
                                 line = "[24 Nov 2026 22:05:00]: ";
        std::istringstream all(raw());
        std::string masked;
        for (std::string read; std::getline(all, read);) {
            if (read.size() >= title.size() && read.starts_with("********** - "))
                read.replace(0, title.size(), "** ");
            else if (read.size() >= line.size() && read[0] == '[' && read.substr(line.size() - 3, 3) == "]: ")
                read.replace(0, line.size(), "[]: ");
            masked += read + '\n';
        }
        return masked;
    }

  private:
    std::filesystem::path folder_, path_;
};

} // namespace zvtest
