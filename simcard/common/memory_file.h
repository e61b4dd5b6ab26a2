#pragma once

#include <string>
#include <string_view>

namespace simcard {

// A file without a place of its own that is gone when it is closed: in memory where the system has such
// files, else in the folder for temporary files, from which the end removes it.
class MemoryFile {
  public:
    // @throws CardProblem when it cannot be made or filled.
    MemoryFile(const char* name, std::string_view content);
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    // Opens it, within this process.
    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    explicit MemoryFile(const char* name);
    void fill(std::string_view content);

    int descriptor_ = -1;
    std::string path_;
};

} // namespace simcard
