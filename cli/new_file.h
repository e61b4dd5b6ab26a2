#pragma once

#include "cli/scoped_fd.h"

#include <string>
#include <string_view>

namespace cli {

/**
 * A file that is created before the work whose result it takes, so that a result never finds no place.
 * Existing files are left alone. Without save() there is no file in the end.
 */
class NewFile {
  public:
    /// @throws Stop when there is a file of that name, or none can be made.
    explicit NewFile(std::string path);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    /// Writes the file, to the disk. @throws Stop
    void save(std::string_view text);
    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    std::string path_;
    ScopedFd file_;
    bool saved_ = false;
};

} // namespace cli
